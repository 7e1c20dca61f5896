#include "text/ARNEBI18NBuffer.h"

#include <new>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "support/Raised.h"

namespace
{
std::vector<std::size_t> s_blocks;  // sizes asked for
std::size_t s_largestBlock = 1 << 30;
}  // namespace

void* operator new[](std::size_t size)
{
    s_blocks.push_back(size);
    return size > s_largestBlock ? throw std::bad_alloc() : ::operator new(size);
}

void operator delete[](void* block) noexcept
{
    ::operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    ::operator delete(block);
}

namespace
{
using Text = std::u16string;
using Unit = unsigned short;

// Gives access to what a derived class may call.
struct Buffer : ARNEBI18NBuffer
{
    using ARNEBI18NBuffer::ARNEBI18NBuffer;
    using ARNEBI18NBuffer::createBuffer;
    using ARNEBI18NBuffer::operator=;
};

Unit const* units(Text const& text)
{
    return reinterpret_cast<Unit const*>(text.c_str());
}

Unit const* unitsAt(ARNEBI18NBuffer const& buffer, std::uint64_t at)
{
    return static_cast<Unit const*>(buffer.getBuffer()) + at;
}

Text textOf(ARNEBI18NBuffer const& buffer)
{
    return {unitsAt(buffer, 0), unitsAt(buffer, buffer.getCodepoints())};
}

// Around 15 units, the longest text that fits the object.
TEST(ARNEBI18NBufferContent, FollowsChangesByItsOwnPartsAtEverySize)
{
    for (std::size_t const size : {2u, 8u, 14u, 15u, 16u, 100u})
    {
        SCOPED_TRACE(size);
        Text const held = Text(size - 1, u'a') + u'z';
        Buffer whole(units(held)), part(whole), unit(whole), longer(whole), longerByUnit(whole);
        whole = unitsAt(whole, 0);
        EXPECT_EQ(held, textOf(whole));
        part = unitsAt(part, 1);
        EXPECT_EQ(held.substr(1), textOf(part));
        unit = *unitsAt(unit, size - 1);
        EXPECT_EQ(u"z", textOf(unit));
        longer += unitsAt(longer, 1);
        EXPECT_EQ(held + held.substr(1), textOf(longer));
        longerByUnit += *unitsAt(longerByUnit, size - 1);
        EXPECT_EQ(held + u"z", textOf(longerByUnit));
    }
}

TEST(ARNEBI18NBufferContent, IsEmptyForNull)
{
    EXPECT_TRUE(Buffer(static_cast<Unit const*>(nullptr)).empty());
}

TEST(ARNEBI18NBufferOutput, EmptiesAStringWithoutAText)
{
    I18NString string("old");
    Buffer().getString(string);
    EXPECT_TRUE(string.empty());
}

TEST(ARNEBI18NBufferOutput, WritesEveryUnitAsUtf8)
{
    Text const text(u"\x00E9\0\xD83D\xDE00", 4);
    I18NString string;
    string.setTo(text.c_str(), 10);
    Buffer buffer(string);
    std::ostringstream stream;
    stream << buffer << '|' << std::as_const(buffer) << '|' << Buffer();
    std::string const bytes("\xC3\xA9\0\xF0\x9F\x98\x80|", 8);
    EXPECT_EQ(bytes + bytes, stream.str());
}

TEST(ARNEBI18NBufferStorage, TakesBlocksOfExactlyTheSizeWhenItMust)
{
    Text const longest(15, u'x');  // that fits the object
    Buffer const outside(units(longest + u"x"));
    s_blocks.clear();
    Buffer buffer(units(longest));
    buffer.reserve(4096);  // too late
    buffer = outside;
    buffer.truncate(14);
    buffer += Unit{'y'};  // moves into the object
    buffer += Unit{'z'};
    Buffer reserved;
    reserved.reserve(60);
    reserved += units(longest);
    reserved = units(Text(29, u'y'));
    EXPECT_EQ((std::vector<std::size_t>{34, 34, 60}), s_blocks);
}

TEST(ARNEBI18NBufferChecksum, FoldsTheBytesOfLettersOnly)
{
    Text const large = Text(300, u'A') + u"\x4161@[\x00C0", small = Text(300, u'a') + u"\x6161@[\x00C0";
    EXPECT_EQ(Buffer(units(small)).getCrc(), Buffer(units(large)).getCssCrc());
}

TEST(ARNEBI18NBufferChecksum, IsThatOfTheNewText)
{
    Buffer buffer(units(u"old"));
    std::uint32_t const old = buffer.getCssCrc();
    buffer = units(u"new");
    EXPECT_NE(old, buffer.getCssCrc());
}

TEST(ARNEBI18NBufferMemory, LackOfItEmptiesTheBuffer)
{
    for (std::size_t const held : {3u, 100u})
    {
        Buffer buffer(units(Text(held, u'o')));
        s_largestBlock = 0;
        EXPECT_THROW(buffer += units(Text(200, u'l')), NEBOutOfMemoryError);
        s_largestBlock = 1 << 30;
        EXPECT_TRUE(buffer.empty());
        EXPECT_EQ(0, *unitsAt(buffer, 0));
        buffer += units(u"usable");
        EXPECT_EQ(u"usable", textOf(buffer));
    }
}

TEST(ARNEBI18NBufferMemory, LackOfItInADerivedClassIsNoticed)
{
    Buffer buffer(units(u"abc"));
    EXPECT_THROW(buffer.createBuffer(UINT64_MAX), NEBOutOfMemoryError);
    EXPECT_TRUE(buffer == buffer);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(m_buffer);", raisedBy([&] { buffer.truncate(1); }).at(0));
}
}  // namespace
