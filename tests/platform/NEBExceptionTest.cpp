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
NEBFileLocation const s_place("p", 7);

template <class Error>
void expectHurledCopy(Error original, std::string const& description)
{
    std::unique_ptr<NEBThrowable> const copy(original.clone());
    try
    {
        copy->hurl(s_place, "operation", "NEB_THROW");
    }
    catch (Error& caught)
    {
        EXPECT_NE(copy.get(), &caught);
        caught.addBackTrace(s_place, nullptr, "NEB_RETHROW");
        EXPECT_EQ((Lines{description, "p NEB_THROW operation", "p NEB_RETHROW"}), describe(caught));
        EXPECT_EQ((Lines{description, "p NEB_THROW operation"}), describe(*copy));
        EXPECT_EQ(Lines{description}, describe(original));
    }
}

TEST(NEBThrowable, HurlsACopyOfItsOwnClass)
{
    expectHurledCopy(NEBException(2, "text"), "NEBException: text");
    expectHurledCopy(NEBAssertError(0, "NEB_ASSERT(x);"), "NEBAssertError: NEB_ASSERT(x);");
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
