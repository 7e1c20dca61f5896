#include "frame/ARXMessage.h"

#include <gtest/gtest.h>

TEST(ARXMessage, GetMessageReplacesTheResultAndKeepsTheNumber)
{
    ARXMessage message(99u);
    I18NString result("before");
    message.getMessage("a.zip", 2, result);
    EXPECT_STREQ("The archive a.zip can't be read.", result.c_str());
    EXPECT_EQ(2u, message.getMessageId());
}

TEST(ARXMessage, NamesAMessageFileByItsText)
{
    ARXMessage message("Other");
    EXPECT_STREQ("Other", message.getMsgFile().c_str());
    I18NString result;
    message.getMessage(nullptr, 5, result);
    EXPECT_STREQ("Other:5", result.c_str());
}
