#include "ARXResource/ARXI18NRes.h"

#include <tuple>

#include <gtest/gtest.h>

#include "NEBCore/NEBMessage.h"

namespace
{
TEST(ARXI18NRes, GivesTheTextsInUseAndEmptyOnesElsewhere)
{
    char const* const texts[] = {"ArxiumMessages", "fileEncryption",        "on", "", "", "",
                                 "gatewayUrl",     "externalDispatcherUrl", ""};
    for (int id = 0; id < 9; ++id)
        EXPECT_STREQ(texts[id], ARXI18NRes::getString(id).c_str()) << id;
    EXPECT_TRUE(ARXI18NRes::getString(-1).empty());
}

TEST(NEBMessage, FillsPlacesInOnePassAndNeverLosesAnUnknownMessage)
{
    std::tuple<std::uint32_t, char const*, char const*> const rows[] = {
        {1, "{1}", "The file {1} can't be opened."},
        {1, nullptr, "The file  can't be opened."},
        {3, "\xC3\xA4", "The session \xC3\xA4 can't be opened."},
        {99, "x", "ArxiumMessages:99"}};
    for (auto const& [id, argument, expected] : rows)
    {
        NEBMessage message(ARXI18NRes::getString(0));
        message.setMessage(id);
        I18NString text(">");
        message.format(argument, nullptr, text);
        EXPECT_EQ(std::string(">") + expected, text.c_str());
        message.setMsgFile(I18NString("other"));
        message.toString(nullptr, nullptr, text, 2);
        EXPECT_EQ("  other:" + std::to_string(id), text.c_str());
    }
}
}  // namespace
