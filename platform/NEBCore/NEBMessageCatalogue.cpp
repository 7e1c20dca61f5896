#include "NEBCore/NEBMessageCatalogue.h"

#include <map>
#include <mutex>
#include <utility>

namespace
{
struct Catalogues
{
    std::mutex m_lock;
    std::map<std::string, std::vector<std::string>> m_texts;
};

// Never destroyed, so that messages have their texts while the process ends.
Catalogues& catalogues()
{
    static Catalogues& s_catalogues = *new Catalogues;
    return s_catalogues;
}
}  // namespace

void NEBMessageCatalogue::install(std::string const& file, std::vector<std::string> texts)
{
    Catalogues& all = catalogues();
    std::lock_guard<std::mutex> const guard(all.m_lock);
    all.m_texts.emplace(file, std::move(texts));
}

char const* NEBMessageCatalogue::find(char const* file, std::uint32_t id)
{
    Catalogues& all = catalogues();
    std::lock_guard<std::mutex> const guard(all.m_lock);
    auto const found = all.m_texts.find(file);
    bool const isKnown = found != all.m_texts.end() && id != 0 && id <= found->second.size();
    return isKnown ? found->second[id - 1].c_str() : nullptr;
}
