#include "frame/ARXException.h"

#include <memory>
#include <tuple>

#include <gtest/gtest.h>

#include "NEBCore/NEBMessageString.h"
#include "frame/ARXRaise.h"
#include "support/Raised.h"

namespace
{
NEBMessageString message(char const* text)
{
    return NEBMessageString(I18NString(text));
}

NEBFileLocation const s_place("place", 1);
}  // namespace

TEST(ARXException, EachConstructorSetsWhatItsFormSays)
{
    std::tuple<ARXException, NEBSeverity, std::int32_t, char const*> const s_forms[] = {
        {ARXException(7), 1, 7, ""},
        {ARXException(3, 7), 3, 7, ""},
        {ARXException("text"), 1, 0, "text"},
        {ARXException(3, "text"), 3, 0, "text"},
    };
    for (auto const& [error, severity, code, message] : s_forms)
    {
        EXPECT_EQ(severity, error.getSeverity());
        EXPECT_EQ(code, error.getCode());
        EXPECT_STREQ(message, error.getMessage());
    }
}

TEST(ARXException, IsCaughtAsEachOfItsBases)
{
    auto const raise = [] { ARXException(1, 0).hurl(s_place, nullptr, "NEB_THROW"); };
    EXPECT_THROW(raise(), ARXException);
    EXPECT_THROW(raise(), NEBException);
    EXPECT_THROW(raise(), NEBThrowable);
    EXPECT_THROW(raise(), NEBMessageSet);
}

TEST(ARXException, HurlThrowsACopyThatOutlivesTheLocal)
{
    auto const raise = []
    {
        ARXException error(1, 0);
        error << message("one") << message("two");
        NEBException& base = error;
        base.hurl(s_place, "operation", "NEB_THROW");
    };
    EXPECT_EQ((Lines{"ARXException: one\ntwo", "place NEB_THROW operation"}), raisedBy(raise));
}

TEST(ARXException, CloneAndAssignmentKeepAllAndStandAlone)
{
    ARXException error(3, 7);
    error << message("one");
    error.addBackTrace(s_place, nullptr, "NEB_THROW");
    std::unique_ptr<NEBThrowable> const clone(static_cast<NEBThrowable const&>(error).clone());
    ARXException assigned(0);
    assigned = error;
    ARXException& self = error;
    error = self;
    error << message("two");

    ASSERT_TRUE(dynamic_cast<ARXException*>(clone.get()));
    EXPECT_EQ((Lines{"ARXException: one", "place NEB_THROW"}), describe(*clone));
    EXPECT_EQ(describe(*clone), describe(assigned));
    EXPECT_EQ(7, assigned.getCode());
    EXPECT_EQ("ARXException: one\ntwo", describe(error)[0]);
}

TEST(ARXException, WrappingTakesOverWhatTheSourceHeldOnce)
{
    for (bool const withMessage : {true, false})
    {
        NEBException source("inner");
        source.addBackTrace(s_place, nullptr, "NEB_THROW");
        NEBMessageString const outer = message("outer");
        ARXException const wrapper(source, withMessage ? &outer : nullptr);
        EXPECT_EQ(
            (Lines{withMessage ? "ARXException: inner\nouter" : "ARXException: inner", "place NEB_THROW"}),
            describe(wrapper));
        EXPECT_EQ(Lines{"NEBException: "}, describe(source));
    }
}

TEST(RaiseWithText, PutsTextsIntoMessagesAndTheOperationIntoTheBackTrace)
{
    EXPECT_EQ((Lines{"ARXException: one\ntwo", "place NEB_THROW Class::operation"}),
              raisedBy(
                  [] {
                      raiseWithText(s_place, {"one", "two"}, "Class::operation");
                  }));
}
