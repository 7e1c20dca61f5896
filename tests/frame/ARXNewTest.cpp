#include "frame/ARXNew.h"

#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "frame/ARXAssert.h"
#include "support/Raised.h"
#include "support/Rows.h"

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

struct NewRow
{
    char const* m_name;
    int* (*m_make)();
    Lines m_raised;
};
NewRow const s_rows[] = {
    {"NullResult", []() -> int* { return nullptr; }, {"NEBOutOfMemoryError: ", s_thrown, s_passed}},
    {"BadAlloc", []() -> int* { throw std::bad_alloc(); }, {"NEBOutOfMemoryError: ", s_thrown}},
    {"StandardException",
     []() -> int* { throw std::out_of_range("x"); },
     {"NEBStdExceptionError: x", s_thrown}},
    {"Assertion",
     failAssertion,
     {"NEBAssertError: NEB_ASSERT_NAMED(NULL == &s_object, \"a \\\"text\\\"\");", s_thrown, s_passed}},
};

class NEBNew : public testing::TestWithParam<NewRow>
{
};

TEST_P(NEBNew, RaisesWithItsPlace)
{
    int* target = nullptr;
    EXPECT_EQ(GetParam().m_raised, raisedBy([&] { NEB_NEW(target, GetParam().m_make()); }));
}
INSTANTIATE_TEST_SUITE_P(Failures, NEBNew, testing::ValuesIn(s_rows), RowName());

TEST(NEBNewTarget, StaysIfTheExpressionThrows)
{
    int* target = nullptr;
    NEB_NEW(target, &s_object);
    EXPECT_EQ(&s_object, target);
    EXPECT_THROW(NEB_NEW(target, []() -> int* { throw 7; }()), int);
    EXPECT_EQ(&s_object, target);
}
}  // namespace
