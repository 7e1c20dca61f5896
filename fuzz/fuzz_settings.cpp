// A file of settings is either refused as a whole, and then no setting changes, or every line of it that is
// neither empty nor a comment gives a key its value.

#include <fstream>
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

void checkLines(std::string const& text)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        line = withoutBlanks(line);
        if (line.empty() || line[0] == '#')
            continue;
        std::size_t const equals = line.find('=');
        mustHold(equals != std::string::npos && equals != 0, "a line without key or = is refused");
        mustHold(hasValue(withoutBlanks(line.substr(0, equals)), withoutBlanks(line.substr(equals + 1))),
                 "each key has the value of its line");
    }
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
    bool const isTakenNow = isTaken(path);
    mustHold(isTakenNow || hasValue("kept", "before"), "a refused file changes nothing");
    if (isTakenNow)
        checkLines(text.rfind("\xEF\xBB\xBF", 0) == 0 ? text.substr(3) : text);
    return 0;
}
