#include "frame/ARXNew.h"

#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "frame/ARXAssert.h"
#include "support/Raised.h"

namespace
{
int s_object = 0;
std::string const s_thrown = "tests/frame/ARXNewTest.cpp NEB_THROW",
                  s_passed = "tests/frame/ARXNewTest.cpp NEB_RETHROW";

int* failAssertion()
{
    NEB_ASSERT_NAMED(NULL == &s_object, "a \"text\"");
    return nullptr;
}

Lines raisedByNew(int* (*make)())
{
    int* target = nullptr;
    return raisedBy([&] { NEB_NEW(target, make()); });
}

TEST(NEBNew, RaisesWithItsPlace)
{
    EXPECT_EQ((Lines{"NEBOutOfMemoryError: ", s_thrown, s_passed}),
              raisedByNew([]() -> int* { return nullptr; }));
    EXPECT_EQ((Lines{"NEBOutOfMemoryError: ", s_thrown}),
              raisedByNew([]() -> int* { throw std::bad_alloc(); }));
    EXPECT_EQ((Lines{"NEBStdExceptionError: x", s_thrown}),
              raisedByNew([]() -> int* { throw std::out_of_range("x"); }));
    EXPECT_EQ(
        (Lines{R"(NEBAssertError: NEB_ASSERT_NAMED(NULL == &s_object, "a \"text\"");)", s_thrown, s_passed}),
        raisedByNew(failAssertion));
}

TEST(NEBNew, PassesOtherExceptionsOn)
{
    EXPECT_THROW(raisedByNew([]() -> int* { throw 7; }), int);
}
}  // namespace
