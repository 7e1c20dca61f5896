#include "ARXResource/ARXI18NRes.h"

#include <map>

#include "NEBCore/NEBMessageCatalogue.h"

namespace
{
char constexpr s_messageFileName[] = "ArxiumMessages";

char const* findMessage(std::uint32_t id)
{
    switch (id)
    {
    case 1:
        return "The file {0} can't be opened.";
    case 2:
        return "The archive {0} can't be read.";
    case 3:
        return "The session {0} can't be opened.";
    default:
        return nullptr;
    }
}

// At load, since a host may name the message file without having asked for any string.
[[gnu::constructor]] void installCatalogue()
{
    static NEBMessageCatalogue::Entry s_entry{s_messageFileName, findMessage};
    NEBMessageCatalogue::install(s_entry);
}

std::map<int, I18NString> const& makeStrings()
{
    return *new std::map<int, I18NString>{{ARXI18NRes::s_messageFile, s_messageFileName},
                                          {ARXI18NRes::s_fileEncryptionSetting, "fileEncryption"},
                                          {ARXI18NRes::s_fileEncryptionOn, "on"},
                                          {ARXI18NRes::s_gatewaySetting, "gatewayUrl"},
                                          {ARXI18NRes::s_dispatcherSetting, "externalDispatcherUrl"}};
}
}  // namespace

I18NString const& ARXI18NRes::getString(int id)
{
    // Made on first use and never destroyed: hosts may ask before main and while the process ends.
    static std::map<int, I18NString> const& s_strings = makeStrings();
    static I18NString const& s_empty = *new I18NString;
    auto const found = s_strings.find(id);
    return found == s_strings.end() ? s_empty : found->second;
}
