#include "frame/ARXException.h"

#include <memory>
#include <type_traits>

#include <gtest/gtest.h>

#include "NEBCore/NEBMessageString.h"
#include "frame/ARXMessage.h"
#include "support/Raised.h"

namespace
{
NEBMessageString const s_one("one"), s_two("two");
NEBFileLocation const s_place("place", 1);
static_assert(std::is_nothrow_copy_constructible_v<ARXException>);

TEST(ARXException, CopiesKeepAll)
{
    ARXException error(3, 7), assigned(0);
    NEBException& base = error << s_one;
    Lines const expected{"ARXException: one", "place NEB_THROW operation"};
    EXPECT_EQ(expected, raisedBy([&] { base.hurl(s_place, "operation", "NEB_THROW"); }));
    std::unique_ptr<NEBThrowable> const clone(error.clone());
    assigned = error;
    error << s_two;
    EXPECT_EQ(expected, describe(*clone));
    EXPECT_EQ(expected, describe(assigned));
    EXPECT_EQ(3, assigned.getSeverity());
    EXPECT_EQ(7, assigned.getCode());
    EXPECT_EQ((Lines{"ARXException: one\ntwo", expected[1]}), describe(error));
}

TEST(ARXException, WrappingTakesWhatTheSourceHeldOnce)
{
    NEBException source("one");
    source.addBackTrace(s_place, nullptr, "NEB_THROW");
    EXPECT_EQ((Lines{"ARXException: one\ntwo", "place NEB_THROW"}), describe(ARXException(source, &s_two)));
    EXPECT_EQ(Lines{"ARXException: no messages"}, describe(ARXException(source, nullptr)));
}

TEST(ARXMessage, GetMessageReplacesTheResult)
{
    ARXMessage own(99u), other("Other");
    I18NString result("a path that is the argument and is replaced by the text");
    own.getMessage(result.c_str(), 2, result);
    EXPECT_STREQ("The archive a path that is the argument and is replaced by the text can't be read.",
                 result.c_str());
    EXPECT_EQ(2u, own.getMessageId());
    other.getMessage(nullptr, 5, result);
    EXPECT_STREQ("Other:5", result.c_str());
}
}  // namespace
