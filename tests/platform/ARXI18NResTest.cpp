#include "ARXResource/ARXI18NRes.h"

#include <gtest/gtest.h>

#include "NEBCore/NEBMessage.h"

namespace
{
// First, so that only the load of the library can have brought the texts.
TEST(ARXI18NRes, BringsMessagesThatFillPlacesInOnePassAndAreNeverLost)
{
    std::tuple<std::uint32_t, char const*, char const*> const rows[] = {
        {1, "{1}", ">The file {1} can't be opened."},
        {1, nullptr, ">The file  can't be opened."},
        {3, "\xC3\xA4", ">The session \xC3\xA4 can't be opened."},
        {99, "x", ">ArxiumMessages:99"}};
    for (auto const& [id, argument, expected] : rows)
    {
        NEBMessage message(I18NString("ArxiumMessages"));
        message.setMessage(id);
        I18NString text(">");
        message.format(argument, nullptr, text);
        EXPECT_STREQ(expected, text.c_str());
        message.setMsgFile(I18NString("other"));
        message.toString(nullptr, nullptr, text, 2);
        EXPECT_EQ("  other:" + std::to_string(id), text.c_str());
    }
}

TEST(ARXI18NRes, GivesTheTextsInUseAndEmptyOnesElsewhere)
{
    std::string texts;
    for (int id = -1; id < 9; ++id)
        texts += std::string(ARXI18NRes::getString(id).c_str()) + ',';
    EXPECT_EQ(",ArxiumMessages,fileEncryption,on,,,,gatewayUrl,externalDispatcherUrl,,", texts);
}
}  // namespace
