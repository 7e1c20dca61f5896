// A file of settings is either refused as a whole, and then no setting changes, or every line of it that is
// neither empty nor a comment gives a key its value. A model tells which, and all other settings stay.

#include <fstream>
#include <map>
#include <optional>
#include <sstream>

#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "NEBCore/NEBException.h"
#include "fuzz/Fuzz.h"
#include "support/TemporaryFolder.h"

namespace
{
bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

std::string withoutBlanks(std::string text)
{
    while (!text.empty() && isBlank(text.back()))
        text.pop_back();
    while (!text.empty() && isBlank(text.front()))
        text.erase(0, 1);
    return text;
}

bool isTaken(std::string const& path)
{
    try
    {
        NEBConfigurationStore::getStore().load(path);
        return true;
    }
    catch (NEBException const&)
    {
        return false;
    }
}

bool hasValue(std::string const& key, std::string const& value)
{
    return NEBConfigurationStore::getStore().getConfigurationValue(key.c_str(), nullptr) == value.c_str();
}

using Settings = std::map<std::string, std::string>;

// What text sets; nothing if one of its lines has no key, no = or a key for the second time.
std::optional<Settings> modelSettings(std::string const& text)
{
    Settings settings;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        line = withoutBlanks(line);
        if (line.empty() || line[0] == '#')
            continue;
        std::size_t const equals = line.find('=');
        std::string const key = withoutBlanks(line.substr(0, equals));
        // Keys and values end at a zero byte.
        if (equals == std::string::npos || key.empty() ||
            !settings.emplace(key.c_str(), withoutBlanks(line.substr(equals + 1)).c_str()).second)
            return {};
    }
    return settings;
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static TemporaryFolder s_folder;
    std::string const path = s_folder / "settings";
    std::string text(reinterpret_cast<char const*>(data), size);
    std::ofstream(path, std::ios::binary) << text;

    NEBConfigurationStore::getStore().clear();
    NEBConfigurationStore::getStore().setValue("kept", "before");
    auto const expected = modelSettings(text.rfind("\xEF\xBB\xBF", 0) == 0 ? text.substr(3) : text);
    mustHold(isTaken(path) == expected.has_value(), "a file is taken exactly if all its lines are good");
    Settings settings = expected.value_or(Settings());
    settings.emplace("kept", "before");
    for (auto const& [key, value] : settings)
        mustHold(hasValue(key, value), "each key has the value of its line, or the one before");
    return 0;
}
