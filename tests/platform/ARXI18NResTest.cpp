#include "ARXResource/ARXI18NRes.h"

#include <gtest/gtest.h>

#include "NEBCore/NEBMessage.h"
#include "support/Rows.h"

namespace
{
struct MessageRow
{
    char const* m_name;
    std::uint32_t m_id;
    char const* m_argument;
    char const* m_text;
};
MessageRow const s_messages[] = {
    {"BracesInTheArgumentStay", 1, "{1}", "The file {1} can't be opened."},
    {"NullArgumentIsEmpty", 2, nullptr, "The archive  can't be read."},
    {"LastNumber", 3, "\xC3\xA4", "The session \xC3\xA4 can't be opened."},
    {"NumberAboveTheLast", 4, "x", "ArxiumMessages:4"},
    {"NumberZero", 0, "x", "ArxiumMessages:0"},
};

class ARXI18NResMessage : public testing::TestWithParam<MessageRow>
{
};

TEST_P(ARXI18NResMessage, HasItsText)
{
    NEBMessage message(ARXI18NRes::getString(ARXI18NRes::s_messageFile), GetParam().m_id);
    I18NString text(">");
    message.format(GetParam().m_argument, nullptr, text);
    EXPECT_EQ(std::string(">") + GetParam().m_text, text.c_str());
    message.setMsgFile(I18NString("other"));
    message.toString(nullptr, nullptr, text, 2);
    EXPECT_EQ("  other:" + std::to_string(GetParam().m_id), text.c_str());
}
INSTANTIATE_TEST_SUITE_P(Numbers, ARXI18NResMessage, testing::ValuesIn(s_messages), RowName());

TEST(ARXI18NRes, OtherNumbersAreEmpty)
{
    std::string texts;
    for (int id = -1; id < 9; ++id)
        texts += std::string(ARXI18NRes::getString(id).c_str()) + ',';
    EXPECT_EQ(",ArxiumMessages,fileEncryption,on,,,,gatewayUrl,externalDispatcherUrl,,", texts);
}
}  // namespace
