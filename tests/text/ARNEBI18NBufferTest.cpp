#include "text/ARNEBI18NBuffer.h"

#include <cstring>
#include <new>
#include <sstream>

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

Unit const* const s_none = nullptr;

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

Unit const* unitsAt(ARNEBI18NBuffer const& buffer, std::size_t at)
{
    return static_cast<Unit const*>(buffer.getBuffer()) + at;
}

I18NString toString(Text const& text)
{
    I18NString result;
    result.setTo(text.c_str(), static_cast<std::uint32_t>(text.size() * 2 + 2));
    return result;
}

void expectHolds(Text const& text, ARNEBI18NBuffer const& buffer)
{
    ASSERT_EQ(text.size() * 2 + 2, buffer.getSize());
    ASSERT_EQ(0, std::memcmp(text.c_str(), buffer.getBuffer(), text.size() * 2 + 2));
    ARNEBI18NBuffer const fresh(toString(text));
    ASSERT_TRUE(buffer == fresh.getCrc()) << "a checksum of the text before is kept";
    ASSERT_EQ(fresh.getCssCrc(), buffer.getCssCrc());
    ASSERT_TRUE(buffer == toString(text));
    ASSERT_TRUE(buffer.getString() == toString(text));
}

void expectEmpty(ARNEBI18NBuffer const& buffer)
{
    EXPECT_TRUE(buffer.empty());
    EXPECT_EQ(0u, buffer.getSize() + buffer.getDataSize() + buffer.getCodepoints() + buffer.getCssCrc());
    EXPECT_EQ(0, *unitsAt(buffer, 0));
    EXPECT_TRUE(buffer == ARNEBI18NBuffer() && buffer == 0u && buffer != toString(u""));
    I18NString string("old");
    buffer.getString(string);
    EXPECT_TRUE(string.empty() && buffer.getString().empty());
}

// Changes of a buffer of size units by a part of what it holds, from the unit at on.
void expectOwnChanges(std::size_t size, std::size_t at)
{
    Text held;
    while (held.size() < size)
        held += static_cast<char16_t>(u'A' + 259 * held.size());
    auto const expectAfter = [&](char const* name, Text const& result, auto const& change)
    {
        SCOPED_TRACE(name);
        Buffer buffer(units(held));
        expectHolds(held, buffer);
        change(buffer);
        expectHolds(result, buffer);
    };
    expectAfter("assigned part", held.substr(at), [&](auto& buffer) { buffer = unitsAt(buffer, at); });
    expectAfter("assigned unit", held.substr(at, 1), [&](auto& buffer) { buffer = *unitsAt(buffer, at); });
    expectAfter("appended itself", held + held, [&](auto& buffer) { buffer += buffer; });
    expectAfter("appended part", held + held.substr(at),
                [&](auto& buffer) { buffer += unitsAt(buffer, at); });
    expectAfter("appended unit", held + held[at], [&](auto& buffer) { buffer += *unitsAt(buffer, at); });
    expectAfter("truncated", held.substr(0, at), [&](auto& buffer) { buffer.truncate(at); });
}

TEST(ARNEBI18NBufferContent, FollowsChangesByItsOwnPartsAtEverySize)
{
    for (std::size_t const size : {1u, 2u, 8u, 14u, 15u, 16u, 100u})
        for (std::size_t const at : {std::size_t(0), size / 2, size - 1})
            ASSERT_NO_FATAL_FAILURE(expectOwnChanges(size, at)) << at << " of " << size << " units";
}

TEST(ARNEBI18NBufferContent, IsEmptyWithoutATextOnly)
{
    expectEmpty(Buffer(s_none));
    expectEmpty(Buffer(units(u"")));
    expectHolds(u"", Buffer(toString(u"")));
    expectHolds(Text(1, u'\0'), Buffer(Unit{0}));
    Buffer buffer(units(u"abc"));
    buffer.clear();
    expectEmpty(buffer);
}

TEST(ARNEBI18NBufferOutput, WritesEveryUnitAsUtf8)
{
    std::ostringstream stream;
    stream << Buffer(toString(Text(u"\x00E9\0\xD83D\xDE00", 4))) << '|' << Buffer();
    EXPECT_EQ(std::string("\xC3\xA9\0\xF0\x9F\x98\x80|", 8), stream.str());
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

TEST(ARNEBI18NBufferChecksum, FoldsBytesInTheOrderOfTheMachine)
{
    bool const isLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
    std::uint32_t const ofSmallLetters = isLittleEndian ? 0x15CC89F0 : 0xE180C96C;
    EXPECT_EQ(ofSmallLetters, Buffer(units(u"abc")).getCrc());
    EXPECT_EQ(ofSmallLetters, Buffer(units(u"AbC")).getCssCrc());
    EXPECT_NE(ofSmallLetters, Buffer(units(u"AbC")).getCrc());
    EXPECT_EQ(Buffer(units(u"\x0161\x6161")).getCssCrc(), Buffer(units(u"\x0141\x4161")).getCssCrc());
    EXPECT_EQ(Buffer(units(u"@[\x00C0")).getCrc(), Buffer(units(u"@[\x00C0")).getCssCrc());
    EXPECT_EQ(Buffer(units(Text(300, u'a') + u"b")).getCrc(),
              Buffer(units(Text(300, u'A') + u"B")).getCssCrc());
}

TEST(ARNEBI18NBufferMemory, LackOfItEmptiesTheBuffer)
{
    for (std::size_t const held : {3u, 100u})
    {
        Buffer buffer(units(Text(held, u'o')));
        s_largestBlock = 0;
        EXPECT_THROW(buffer += units(Text(200, u'l')), NEBOutOfMemoryError);
        s_largestBlock = 1 << 30;
        expectEmpty(buffer);
        buffer += units(u"usable");
        expectHolds(u"usable", buffer);
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
