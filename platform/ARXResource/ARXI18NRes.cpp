#include "ARXResource/ARXI18NRes.h"

#include "NEBCore/NEBMessageCatalogue.h"

namespace
{
int constexpr s_count = 8;
int constexpr s_unused = 3;

I18NString const* makeStrings()
{
    char constexpr messageFile[] = "ArxiumMessages";
    NEBMessageCatalogue::install(messageFile,
                                 {"The file {0} can't be opened.", "The archive {0} can't be read.",
                                  "The session {0} can't be opened."});
    // Each at its number.
    return new I18NString[s_count]{messageFile,  "fileEncryption",       "on", "", "", "",
                                   "gatewayUrl", "externalDispatcherUrl"};
}
}  // namespace

I18NString const& ARXI18NRes::getString(int id)
{
    // Made on first use and never destroyed: hosts may ask before main and while the process ends.
    static I18NString const* const s_strings = makeStrings();
    return s_strings[id >= 0 && id < s_count ? id : s_unused];
}
