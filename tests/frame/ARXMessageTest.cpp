#include "frame/ARXMessage.h"

#include <gtest/gtest.h>

TEST(ARXMessage, GetMessageReplacesTheResultAndKeepsTheNumber)
{
    ARXMessage own(99u), other("Other");
    I18NString result("before");
    own.getMessage("a.zip", 2, result);
    EXPECT_STREQ("The archive a.zip can't be read.", result.c_str());
    EXPECT_EQ(2u, own.getMessageId());
    other.getMessage(nullptr, 5, result);
    EXPECT_STREQ("Other:5", result.c_str());
}
