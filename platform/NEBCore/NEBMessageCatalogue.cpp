#include "NEBCore/NEBMessageCatalogue.h"

#include <cstring>
#include <mutex>

namespace
{
std::mutex s_lock;
NEBMessageCatalogue::Entry* s_newest = nullptr;
}  // namespace

void NEBMessageCatalogue::install(Entry& entry)
{
    std::lock_guard<std::mutex> const guard(s_lock);
    for (Entry const* known = s_newest; known; known = known->m_next)
        if (known == &entry)
            return;
    entry.m_next = s_newest;
    s_newest = &entry;
}

char const* NEBMessageCatalogue::find(char const* file, std::uint32_t id)
{
    std::lock_guard<std::mutex> const guard(s_lock);
    for (Entry const* entry = s_newest; entry; entry = entry->m_next)
        if (std::strcmp(entry->m_file, file) == 0)
            return entry->m_lookup(id);
    return nullptr;
}
