#include "frame/ARXNew.h"

#include <new>
#include <tuple>

#include <gtest/gtest.h>

#include "frame/ARXAssert.h"
#include "support/Raised.h"

namespace
{
int s_object = 0, s_before = 0;

int* assertion()
{
    NEB_ASSERT_NAMED(NULL == &s_object, "a \"text\"");
    return nullptr;
}
}  // namespace

TEST(NEBNew, TellsEachFailureInItsOwnWayAndLeavesTheTarget)
{
    std::string const thrown = " | tests/frame/ARXNewTest.cpp NEB_THROW";
    std::string const passed = " | tests/frame/ARXNewTest.cpp NEB_RETHROW",
                      noMemory = "NEBOutOfMemoryError: ";
    std::string const text = "NEBAssertError: NEB_ASSERT_NAMED(NULL == &s_object, \"a \\\"text\\\"\");";
    std::tuple<int* (*)(), int*, std::string> const rows[] = {
        {[] { return &s_object; }, &s_object, ""},
        {[]() -> int* { return nullptr; }, nullptr, noMemory + thrown + passed},
        {[]() -> int* { throw std::bad_alloc(); }, &s_before, noMemory + thrown},
        {[]() -> int* { throw std::out_of_range("x"); }, &s_before, "NEBStdExceptionError: x" + thrown},
        {assertion, &s_before, text + thrown + passed},
    };
    for (auto const& [make, left, raised] : rows)
    {
        int* target = &s_before;
        EXPECT_EQ(raised, joined(raisedBy([&, &maker = make] { NEB_NEW(target, maker()); })));
        EXPECT_EQ(left, target) << raised;
    }
    int* target = nullptr;
    EXPECT_THROW(NEB_NEW(target, []() -> int* { throw 7; }()), int);
}
