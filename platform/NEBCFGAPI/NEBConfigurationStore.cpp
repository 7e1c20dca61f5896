#include "NEBCFGAPI/NEBConfigurationStore.h"

#include <cerrno>
#include <cstring>
#include <sstream>

#include "NEBCore/NEBException.h"
#include "NEBCore/NEBThreadGuard.h"
#include "os/OsFile.h"

namespace
{
char constexpr s_byteOrderMark[] = "\xEF\xBB\xBF";  // some editors begin UTF-8 files with it

std::string trimmed(std::string const& text)
{
    char const* const blanks = " \t\r";
    std::size_t const first = text.find_first_not_of(blanks);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

[[noreturn]] void refuse(std::string const& path, std::string const& reason)
{
    NEBException((path + reason).c_str()).hurl(NEB_HERE, "NEBConfigurationStore::load", "NEB_THROW");
}

// Not by a stream, since those of libc++ take an error for the end of the file.
std::string readText(std::string const& path)
{
    OsFile file;
    if (!file.open(path.c_str(), OsFile::s_read))
        refuse(path, std::string(": ") + std::strerror(errno));
    std::string text;
    char piece[4096];
    std::int64_t count;
    while ((count = file.read(piece, sizeof piece)) > 0)
        text.append(piece, static_cast<std::size_t>(count));
    if (count < 0)
        refuse(path, std::string(": ") + std::strerror(errno));
    return text;
}
}  // namespace

NEBConfigurationStore& NEBConfigurationStore::getStore()
{
    // Never destroyed, since other threads may read while the process ends.
    static NEBConfigurationStore& s_store = *new NEBConfigurationStore;
    return s_store;
}

I18NString NEBConfigurationStore::getConfigurationValue(I18NString const& key, void*)
{
    NEBThreadGuard const guard(m_lock);
    auto const found = m_settings.find(key);
    return found == m_settings.end() ? I18NString() : found->second;
}

void NEBConfigurationStore::setValue(I18NString const& key, I18NString const& value)
{
    NEBThreadGuard const guard(m_lock);
    m_settings[key] = value;
}

void NEBConfigurationStore::clear()
{
    NEBThreadGuard const guard(m_lock);
    m_settings.clear();
}

void NEBConfigurationStore::load(std::string const& path)
{
    std::istringstream file(readText(path));
    Settings read;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number)
    {
        if (number == 1 && line.rfind(s_byteOrderMark, 0) == 0)
            line.erase(0, std::strlen(s_byteOrderMark));
        line = trimmed(line);
        if (line.empty() || line[0] == '#')
            continue;
        std::size_t const equals = line.find('=');
        std::string const key = trimmed(line.substr(0, equals));
        std::string const place = ":" + std::to_string(number);
        if (equals == std::string::npos || key.empty())
            refuse(path, place + ": no \"key=value\"");
        if (!read.emplace(key.c_str(), trimmed(line.substr(equals + 1)).c_str()).second)
            refuse(path, place + ": \"" + key + "\" is set twice");
    }

    // Neither step needs memory, so that all settings of the file are taken or none.
    NEBThreadGuard const guard(m_lock);
    read.merge(m_settings);
    m_settings.swap(read);
}
