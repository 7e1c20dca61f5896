#include "NEBCore/NEBMessageCatalogue.h"

#include <map>
#include <mutex>
#include <string>

namespace
{
struct Catalogues
{
    std::mutex m_lock;
    std::map<std::string, NEBMessageCatalogue::Lookup> m_byFile;
};

// Made on first use and never destroyed, so that a message can be formatted while the process ends.
Catalogues& catalogues()
{
    static Catalogues& s_catalogues = *new Catalogues;
    return s_catalogues;
}
}  // namespace

void NEBMessageCatalogue::install(char const* file, Lookup lookup)
{
    Catalogues& all = catalogues();
    std::lock_guard<std::mutex> const guard(all.m_lock);
    all.m_byFile[file] = lookup;
}

char const* NEBMessageCatalogue::find(char const* file, std::uint32_t id)
{
    Catalogues& all = catalogues();
    std::lock_guard<std::mutex> const guard(all.m_lock);
    auto const found = all.m_byFile.find(file);
    return found == all.m_byFile.end() ? nullptr : found->second(id);
}
