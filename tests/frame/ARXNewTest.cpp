#include "frame/ARXNew.h"

#include <new>
#include <tuple>

#include <gtest/gtest.h>

#include "frame/ARXAssert.h"
#include "support/Raised.h"

namespace
{
int s_object = 0, s_before = 0;

int* make(std::string const& failure)
{
    if (failure == "bad_alloc")
        throw std::bad_alloc();
    if (failure == "std")
        throw std::out_of_range("out of range");
    if (failure == "foreign")
        throw 7;
    NEB_ASSERT_NAMED(NULL == nullptr && failure != "assertion", "a \"text\"");
    return failure == "null" ? nullptr : &s_object;
}
}  // namespace

TEST(NEBNew, TellsEachFailureInItsOwnWayAndLeavesTheTarget)
{
    std::string const thrown = " | tests/frame/ARXNewTest.cpp NEB_THROW";
    std::string const passed = " | tests/frame/ARXNewTest.cpp NEB_RETHROW";
    std::string const text =
        "NEB_ASSERT_NAMED(NULL == nullptr && failure != \"assertion\", \"a \\\"text\\\"\");";
    std::tuple<char const*, int*, std::string> const rows[] = {
        {"none", &s_object, ""},
        {"null", nullptr, "NEBOutOfMemoryError: " + thrown + passed},
        {"bad_alloc", &s_before, "NEBOutOfMemoryError: " + thrown},
        {"std", &s_before, "NEBStdExceptionError: out of range" + thrown},
        {"assertion", &s_before, "NEBAssertError: " + text + thrown + passed},
    };
    int* target = nullptr;
    for (auto const& [failure, left, raised] : rows)
    {
        target = &s_before;
        EXPECT_EQ(raised, joined(raisedBy([&, &name = failure] { NEB_NEW(target, make(name)); })));
        EXPECT_EQ(left, target) << failure;
    }
    EXPECT_THROW(NEB_NEW(target, make("foreign")), int);
}
