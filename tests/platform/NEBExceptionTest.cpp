#include "NEBCore/NEBException.h"

#include <cstdint>
#include <memory>

#include <gtest/gtest.h>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBAssertError.h"
#include "NEBCore/NEBDowncastSize.h"
#include "NEBCore/NEBMessageString.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "support/Raised.h"

namespace
{
TEST(NEBThrowable, ACloneHoldsTheSame)
{
    NEBException exception("text");
    NEBAssertError assertion(0, "NEB_ASSERT(x);");
    for (NEBThrowable* const error : std::initializer_list<NEBThrowable*>{&exception, &assertion})
    {
        error->addBackTrace(NEBFileLocation("p", 7), "operation", "NEB_THROW");
        std::unique_ptr<NEBThrowable> const clone(error->clone());
        EXPECT_EQ(describe(*error), describe(*clone));
        EXPECT_EQ(1u, clone->getBackTrace().size());
    }
}

TEST(NEBException, ToStringIndentsEveryLine)
{
    NEBException error("a\nb");
    error << NEBMessageString(I18NString("c"));
    I18NString text("before");
    error.toString(nullptr, nullptr, text, 1);
    EXPECT_STREQ(" NEBException\n   a\n   b\n   c", text.c_str());
    NEBAssertError(0, "d\ne").toString(nullptr, nullptr, text, 2);
    EXPECT_STREQ("  NEBAssertError: d\n  e", text.c_str());
    EXPECT_STREQ("NEBOutOfMemoryError", NEBOutOfMemoryError(0, nullptr).toString());
}

TEST(NEBException, ReturnedTextsLiveAsLongAsTheObject)
{
    NEBException error("a text too long to be kept in place");
    char const* const first = error.getMessage();
    error << NEBMessageString(I18NString("b"));
    EXPECT_STREQ("a text too long to be kept in place\nb", error.getMessage());
    EXPECT_STREQ("a text too long to be kept in place", first);
}

TEST(NEBDowncastSize, RaisesTheValueAtTheCallersPlace)
{
    EXPECT_EQ(UINT32_MAX, NEBDowncastSize::uint32(UINT32_MAX, "f", 1));
    EXPECT_EQ(INT32_MAX, NEBDowncastSize::int32(INT32_MAX, "f", 1));
    EXPECT_EQ((Lines{"NEBException: Size does not fit into 32 bits: 2147483648",
                     "caller.cpp NEB_THROW NEBDowncastSize"}),
              raisedBy([] { NEBDowncastSize::int32(INT32_MAX + std::size_t{1}, "caller.cpp", 42); }));
}
}  // namespace
