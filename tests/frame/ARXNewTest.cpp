#include "frame/ARXNew.h"

#include <new>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "frame/ARXAssert.h"
#include "support/Raised.h"

namespace
{
int s_object = 0;

int* make(char const* failure)
{
    std::string const kind = failure;
    if (kind == "bad_alloc")
        throw std::bad_alloc();
    if (kind == "std")
        throw std::out_of_range("out of range");
    if (kind == "foreign")
        throw 7;
    NEB_ASSERT(kind != "assertion");
    return kind == "null" ? nullptr : &s_object;
}

int* guarded(char const* failure)
{
    int* target = nullptr;
    NEB_NEW(target, make(failure));
    return target;
}
}  // namespace

TEST(NEBNew, TellsEachFailureInItsOwnWay)
{
    std::string const thrown = "tests/frame/ARXNewTest.cpp NEB_THROW";
    std::string const passed = "tests/frame/ARXNewTest.cpp NEB_RETHROW";
    std::pair<char const*, Lines> const s_failures[] = {
        {"none", {}},
        {"null", {"NEBOutOfMemoryError: ", thrown, passed}},
        {"bad_alloc", {"NEBOutOfMemoryError: ", thrown}},
        {"std", {"NEBStdExceptionError: out of range", thrown}},
        {"assertion", {"NEBAssertError: NEB_ASSERT(kind != \"assertion\");", thrown, passed}},
    };
    for (auto const& [failure, raised] : s_failures)
        EXPECT_EQ(raised, raisedBy([&name = failure] { guarded(name); })) << failure;
    EXPECT_EQ(&s_object, guarded("none"));
    EXPECT_THROW(guarded("foreign"), int);
}

TEST(NEBNew, LeavesTheTargetOfAFailedExpression)
{
    int* target = &s_object;
    raisedBy([&] { NEB_NEW(target, make("std")); });
    EXPECT_EQ(&s_object, target);
}

TEST(NEBAssert, SaysWhatTheSourceSays)
{
    EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(NULL == &s_object, \"a \\\"text\\\"\");",
              raisedBy([] { NEB_ASSERT_NAMED(NULL == &s_object, "a \"text\""); })[0]);
}
