#include "frame/ARXNew.h"

#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "support/Raised.h"

namespace
{
std::string const s_thrown = "tests/frame/ARXNewTest.cpp NEB_THROW";

Lines raisedByNew(int* (*make)())
{
    int* target = nullptr;
    return raisedBy([&] { NEB_NEW(target, make()); });
}

TEST(NEBNew, RaisesWithItsPlace)
{
    EXPECT_EQ((Lines{"NEBOutOfMemoryError: ", s_thrown, "tests/frame/ARXNewTest.cpp NEB_RETHROW"}),
              raisedByNew([]() -> int* { return nullptr; }));
    EXPECT_EQ((Lines{"NEBOutOfMemoryError: ", s_thrown}),
              raisedByNew([]() -> int* { throw std::bad_alloc(); }));
    EXPECT_EQ((Lines{"NEBStdExceptionError: x", s_thrown}),
              raisedByNew([]() -> int* { throw std::out_of_range("x"); }));
}
}  // namespace
