#include "ARXResource/ARXI18NRes.h"

#include <gtest/gtest.h>

#include "NEBCore/NEBMessage.h"

namespace
{
TEST(ARXI18NRes, EachMessageNumberGivesAText)
{
    NEBMessage message(ARXI18NRes::getString(ARXI18NRes::s_messageFile), 1);
    I18NString text(">");
    message.format("{1}", nullptr, text);
    EXPECT_STREQ(">The file {1} can't be opened.", text.c_str());
    for (std::uint32_t const unknown : {0u, 4u})
    {
        message.setMessage(unknown);
        message.toString(nullptr, nullptr, text, 2);
        EXPECT_EQ("  ArxiumMessages:" + std::to_string(unknown), text.c_str());
    }
}

TEST(ARXI18NRes, OtherNumbersAreEmpty)
{
    std::string texts;
    for (int id = -1; id < 9; ++id)
        texts += std::string(ARXI18NRes::getString(id).c_str()) + ',';
    EXPECT_EQ(",ArxiumMessages,fileEncryption,on,,,,gatewayUrl,externalDispatcherUrl,,", texts);
}
}  // namespace
