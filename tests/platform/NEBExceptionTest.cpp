#include "NEBCore/NEBException.h"

#include <cstdint>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBAssertError.h"
#include "NEBCore/NEBDowncastSize.h"
#include "NEBCore/NEBMessageString.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "NEBCore/NEBStdExceptionError.h"
#include "support/Raised.h"

namespace
{
NEBFileLocation const s_place("p", 7);

template <class Error>
void expectHurledCopy(Error original, std::string const& shown)
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
        EXPECT_EQ(shown + " | p NEB_THROW operation | p NEB_RETHROW", joined(describe(caught)));
        EXPECT_EQ(shown + " | p NEB_THROW operation", joined(describe(*copy)));
        EXPECT_EQ(shown, joined(describe(original)));
    }
}

TEST(NEBThrowable, HurlsACopyOfItsOwnClassThatHoldsTheTrace)
{
    expectHurledCopy(NEBException(2, "text"), "NEBException: text");
    expectHurledCopy(NEBException(5), "NEBException: no messages");
    expectHurledCopy(NEBAssertError(0, "NEB_ASSERT(x);"), "NEBAssertError: NEB_ASSERT(x);");
    expectHurledCopy(NEBOutOfMemoryError(0, nullptr), "NEBOutOfMemoryError: ");
    expectHurledCopy(NEBStdExceptionError(std::runtime_error("what")), "NEBStdExceptionError: what");
}

TEST(NEBException, TellsItsNameAndMessagesOnLinesOfTheirOwn)
{
    NEBException error("a");
    error << NEBMessageString(I18NString("b"));
    I18NString text("before");
    error.toString(nullptr, nullptr, text, 1);
    EXPECT_STREQ(" NEBException\n   a\n   b", text.c_str());
    NEBAssertError(0, "c").toString(nullptr, nullptr, text, 2);
    EXPECT_STREQ("  NEBAssertError: c", text.c_str());
}

TEST(NEBSharedList, ReleasesALongListWithoutALongStack)
{
    NEBSharedList<int> list, copy;
    for (int i = 0; i < 1000000; ++i)
        list.push(i);
    copy = list;
    list.push(1000000);
    list = {};
    EXPECT_EQ(1000000u, copy.entries().size());
}

TEST(NEBDowncastSize, NarrowsWhatFitsAndRaisesTheRestAtTheCallersPlace)
{
    std::size_t const one = 1;
    EXPECT_EQ(UINT32_MAX, NEBDowncastSize::uint32(UINT32_MAX, "f", 1));
    EXPECT_EQ(INT32_MAX, NEBDowncastSize::int32(INT32_MAX, "f", 1));
    EXPECT_THROW(NEBDowncastSize::uint32(UINT32_MAX + one, "f", 1), NEBException);
    EXPECT_EQ(
        "NEBException: Size does not fit into 32 bits: 2147483648 | caller.cpp NEB_THROW NEBDowncastSize",
        joined(raisedBy([&] { NEBDowncastSize::int32(INT32_MAX + one, "caller.cpp", 42); })));
}
}  // namespace
