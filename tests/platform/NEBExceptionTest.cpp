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

namespace
{
NEBFileLocation const s_place("p", 7);

std::string traceOf(NEBThrowable const& error)
{
    std::string trace;
    for (NEBBackTraceEntry const* entry : error.getBackTrace())
        trace += entry->getLocation().m_file + (":" + std::to_string(entry->getLocation().m_line)) + " " +
                 entry->getMacro() + ":" + (entry->getText() ? entry->getText() : "null") + " ";
    return trace;
}

template <class Error>
void expectHurledCopy(Error original, char const* name, char const* message)
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
        EXPECT_EQ("p:7 NEB_THROW:operation p:7 NEB_RETHROW:null ", traceOf(caught));
        EXPECT_EQ("p:7 NEB_THROW:operation ", traceOf(*copy));
        EXPECT_EQ("", traceOf(original));
        EXPECT_STREQ(name, caught.getThrowableName());
        EXPECT_STREQ(message, static_cast<NEBThrowable const&>(caught).getMessage());
    }
}

TEST(NEBThrowable, HurlsACopyOfItsOwnClassThatHoldsTheTrace)
{
    expectHurledCopy(NEBException(2, "text"), "NEBException", "text");
    expectHurledCopy(NEBException(5), "NEBException", "");
    expectHurledCopy(NEBAssertError(0, "NEB_ASSERT(x);"), "NEBAssertError", "NEB_ASSERT(x);");
    expectHurledCopy(NEBOutOfMemoryError(0, nullptr), "NEBOutOfMemoryError", "");
    expectHurledCopy(NEBStdExceptionError(std::runtime_error("what")), "NEBStdExceptionError", "what");
}

TEST(NEBException, MovesTraceAndMessagesOnceThoughTheSourceIsConstant)
{
    NEBException source("first");
    source << NEBMessageString(I18NString("second"));
    source.addBackTrace(s_place, "old", "NEB_THROW");
    NEBException copy(source), other("other");
    NEBException const& constant = source;
    copy.transferBackTrace(constant);
    copy.transferMessages(constant);
    EXPECT_EQ("p:7 NEB_THROW:old ", traceOf(copy));
    EXPECT_STREQ("first\nsecond", copy.getMessage());
    EXPECT_EQ("", traceOf(source));
    EXPECT_TRUE(source.getMessages().empty());

    copy.addBackTrace(s_place, nullptr, "NEB_RETHROW");
    other.transferBackTrace(copy);
    other.transferMessages(copy);
    other.transferMessages(other);
    EXPECT_EQ("p:7 NEB_THROW:old p:7 NEB_RETHROW:null ", traceOf(other));
    EXPECT_STREQ("other\nfirst\nsecond", other.getMessage());
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

TEST(NEBDowncastSize, NarrowsWhatFitsAndRaisesTheRestAtTheCallersPlace)
{
    EXPECT_EQ(UINT32_MAX, NEBDowncastSize::uint32(UINT32_MAX, "f", 1));
    EXPECT_EQ(INT32_MAX, NEBDowncastSize::int32(INT32_MAX, "f", 1));
    EXPECT_THROW(NEBDowncastSize::uint32(UINT32_MAX + std::size_t{1}, "f", 1), NEBException);
    try
    {
        NEBDowncastSize::int32(INT32_MAX + std::size_t{1}, "caller.cpp", 42);
        ADD_FAILURE() << "narrowed";
    }
    catch (NEBException const& error)
    {
        EXPECT_STREQ("Size does not fit into 32 bits: 2147483648", error.getMessage());
        EXPECT_EQ("caller.cpp:42 NEB_THROW:NEBDowncastSize ", traceOf(error));
    }
}
}  // namespace
