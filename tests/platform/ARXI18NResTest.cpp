#include "ARXResource/ARXI18NRes.h"

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
    struct
    {
        std::uint32_t m_id;
        char const* m_argument;
        char const* m_text;
    } const rows[] = {{1, "{1}", "The file {1} can't be opened."},
                      {1, nullptr, "The file  can't be opened."},
                      {3, "\xC3\xA4", "The session \xC3\xA4 can't be opened."},
                      {99, "x", "ArxiumMessages:99"}};
    for (auto const& row : rows)
    {
        NEBMessage message(ARXI18NRes::getString(0));
        message.setMessage(row.m_id);
        I18NString text(">");
        message.format(row.m_argument, nullptr, text);
        EXPECT_EQ(std::string(">") + row.m_text, text.c_str());
        message.setMsgFile(I18NString("other"));
        message.toString(nullptr, nullptr, text, 2);
        EXPECT_EQ("  other:" + std::to_string(row.m_id), text.c_str());
    }
}
}  // namespace
