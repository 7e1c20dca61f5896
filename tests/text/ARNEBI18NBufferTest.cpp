#include "text/ARNEBI18NBuffer.h"

#include <cstring>
#include <new>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/mman.h>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "support/Raised.h"

namespace
{
std::vector<std::size_t> s_blocks;  // sizes asked for
std::size_t constexpr s_most = 1 << 30;
std::size_t s_largestBlock = s_most;
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

auto const units = [](Text const& text) { return reinterpret_cast<Unit const*>(text.c_str()); };
auto const own = [](auto const& buffer, std::size_t at)
{ return static_cast<Unit const*>(buffer.getBuffer()) + at; };

auto const toString = [](Text const& text)
{
    I18NString result;
    result.setTo(text.c_str(), static_cast<std::uint32_t>(text.size() * 2 + 2));
    return result;
};
auto const make = [](Text const& text) { return ARNEBI18NBuffer(toString(text)); };

// Everything that shows the content, checksums included: they must be those of a buffer made afresh.
void expectHolds(Text const& text, ARNEBI18NBuffer const& buffer)
{
    ASSERT_TRUE(text.size() * 2 + 2 == buffer.getSize() && text.size() == buffer.getCodepoints());
    ASSERT_EQ(0, std::memcmp(text.c_str(), buffer.getBuffer(), buffer.getSize()));
    ARNEBI18NBuffer const fresh = make(text);
    ASSERT_TRUE(buffer == fresh && buffer == fresh.getCrc() && buffer.getCssCrc() == fresh.getCssCrc());
    I18NString string("old");
    buffer.getString(string);
    ASSERT_TRUE(string == toString(text) && buffer.getString() == string && buffer == string &&
                !buffer.empty());
    std::ostringstream stream;
    stream << buffer;
    ASSERT_EQ(string.c_str(), stream.str());
}

void expectEmpty(ARNEBI18NBuffer const& buffer)
{
    EXPECT_TRUE(buffer.empty() && buffer == ARNEBI18NBuffer() && buffer != make(u"") && buffer == 0u);
    EXPECT_EQ(0u, buffer.getSize() + buffer.getDataSize() + buffer.getCodepoints() + buffer.getCssCrc());
    EXPECT_EQ(0, *own(buffer, 0));
    I18NString string("old");
    buffer.getString(string);
    EXPECT_TRUE(string.empty() && buffer.getString().empty());
}

using Buffer = ARNEBI18NBuffer;
// One change of a buffer and the same of a string. t is another text, i an offset in the present one.
using Change = void (*)(Buffer& b, Text& m, Text const& t, std::size_t i);
Change const s_changes[] = {
    [](Buffer& b, Text& m, Text const& t, std::size_t) { b = units(m = t); },
    [](Buffer& b, Text& m, Text const& t, std::size_t) { b = toString(m = t); },
    [](Buffer& b, Text& m, Text const& t, std::size_t) { b = Buffer(units(m = t)); },
    [](Buffer& b, Text& m, Text const&, std::size_t i) { b = own(b, i), m = m.substr(i); },
    [](Buffer& b, Text& m, Text const&, std::size_t i) { b = *own(b, i), m = m[i]; },
    [](Buffer& b, Text& m, Text const& t, std::size_t) { b += units(t), m += t; },
    [](Buffer& b, Text& m, Text const& t, std::size_t) { b += toString(t), m += t; },
    [](Buffer& b, Text& m, Text const&, std::size_t) { b += b, m += m; },
    [](Buffer& b, Text& m, Text const&, std::size_t i) { b = Buffer(*own(b, i)), m = m[i]; },
    [](Buffer& b, Text& m, Text const&, std::size_t i) { b += own(b, i), m += m.substr(i); },
    [](Buffer& b, Text& m, Text const&, std::size_t i) { b += *own(b, i), m += m[i]; },
    [](Buffer& b, Text& m, Text const&, std::size_t i) { b.truncate(i), m.resize(i); },
};

TEST(ARNEBI18NBufferContent, FollowsAStringThroughAnyChanges)
{
    Text all;
    while (all.size() < 100)
        all += static_cast<char16_t>(u'A' + 259 * all.size());
    for (std::size_t const before : {1u, 2u, 7u, 8u, 14u, 15u, 16u, 100u})
        for (std::size_t const more : {1u, 2u, 3u, 4u, 8u, 14u, 17u, 60u})
            for (std::size_t which = 0; which < std::size(s_changes); ++which)
            {
                Text model = all.substr(0, before);
                ARNEBI18NBuffer buffer(units(model));
                buffer.getCrc(), buffer.getCssCrc();
                s_changes[which](buffer, model, all.substr(30, more), more % before);
                ASSERT_NO_FATAL_FAILURE(expectHolds(model, buffer)) << before << " " << more << " " << which;
            }
}

TEST(ARNEBI18NBufferContent, NoTextIsTheEmptyBufferButALoneTerminatorIsNot)
{
    ARNEBI18NBuffer buffer = make(u"abcd");
    Unit const* const none = nullptr;
    for (std::uint64_t const more : {std::uint64_t{4}, std::uint64_t{1} << 63, UINT64_MAX})
        buffer.truncate(more);
    expectHolds(u"abcd", ((buffer += none) += units(u"")) += ARNEBI18NBuffer());
    buffer.truncate(0);
    expectHolds(u"", buffer);
    expectHolds(u"\x00E9\xD83D\xDE00", buffer = units(u"\x00E9\xD83D\xDE00"));
    std::ostringstream stream;
    stream << buffer << '|' << ARNEBI18NBuffer();
    EXPECT_EQ("\xC3\xA9\xF0\x9F\x98\x80|", stream.str());
    expectEmpty(buffer = none);
    expectEmpty(ARNEBI18NBuffer(units(u"")));
    expectHolds(Text(1, u'\0'), buffer = Unit{0});
    buffer.clear();
    expectEmpty(buffer);
}

TEST(ARNEBI18NBufferContent, IsMeasuredWithoutReadingIntoAnotherPage)
{
    std::size_t const page = 65536;
    auto* const memory = static_cast<char*>(
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_EQ(0, mprotect(memory + page, page, PROT_NONE));
    std::memset(memory, -1, page);
    for (std::size_t end = page; end > page - 32; end -= 2)
    {
        std::memset(memory + end - 2, 0, 2);
        for (std::size_t size = 4; size < 80; size += 2)
            EXPECT_EQ(size, ARNEBI18NBuffer(reinterpret_cast<Unit*>(memory + end - size)).getSize());
    }
    munmap(memory, 2 * page);
}

TEST(ARNEBI18NBufferStorage, TakesBlocksOfExactlyTheSizeAndOnlyWhenItMust)
{
    s_blocks.clear();
    ARNEBI18NBuffer const fifteen(units(Text(15, u'x'))), sixteen(units(Text(16, u'x')));
    ARNEBI18NBuffer buffer = fifteen;
    buffer.reserve(4096);  // too late
    buffer = sixteen;
    buffer.truncate(14);
    buffer += Unit{'y'};  // moves into the object
    buffer += Unit{'z'};
    ARNEBI18NBuffer reserved;
    reserved.reserve(60);
    reserved.reserve(600);
    reserved += fifteen;
    reserved = units(Text(29, u'y'));
    reserved += Unit{'z'};
    EXPECT_EQ((std::vector<std::size_t>{34, 34, 34, 60, 62}), s_blocks);
}

TEST(ARNEBI18NBufferChecksum, FollowsTheBytesAndTheFoldedBytes)
{
    EXPECT_EQ(0x15CC89F0u, make(u"abc").getCrc());
    EXPECT_EQ(0x15CC89F0u, make(u"AbC").getCssCrc());
    EXPECT_NE(0x15CC89F0u, make(u"AbC").getCrc());
    EXPECT_EQ(make(u"\x0161\x6161").getCssCrc(), make(u"\x0141\x4161").getCssCrc());  // by byte, not by unit
    EXPECT_NE(make(u"\x0161").getCrc(), make(u"\x0141").getCrc());
    EXPECT_EQ(make(u"@[\x00C0").getCrc(), make(u"@[\x00C0").getCssCrc());
    EXPECT_EQ(make(Text(300, u'a') + u"b").getCrc(), make(Text(300, u'A') + u"B").getCssCrc());
}

TEST(ARNEBI18NBufferCompare, LooksAtBothEndsWithoutTheTerminator)
{
    std::string seen;  // 1 where abc starts with a text, and 2 where it ends with it
    for (char16_t const* part : {u"abc", u"ab", u"bc", u"abcd", u"", u"c", u"xbc", u"b"})
        seen += static_cast<char>('0' + make(u"abc").startsWith(make(part)) +
                                  2 * make(u"abc").endsWith(make(part)));
    EXPECT_EQ("31200200", seen);
    EXPECT_FALSE(make(u"a").startsWith(ARNEBI18NBuffer()) || ARNEBI18NBuffer().endsWith(make(u"a")));
}

struct OpenBuffer : ARNEBI18NBuffer
{
    using ARNEBI18NBuffer::createBuffer;
};

TEST(ARNEBI18NBufferMemory, LackOfItLeavesAUsableEmptyBuffer)
{
    Text const longText(200, u'l');
    OpenBuffer buffer;
    EXPECT_THROW(buffer.reserve(UINT64_MAX), NEBOutOfMemoryError);
    for (Text const& old : {Text(u"abc"), Text(100, u'o')})
    {
        expectHolds(old, buffer += units(old));
        s_largestBlock = 0;
        EXPECT_THROW(buffer += units(longText), NEBOutOfMemoryError);
        s_largestBlock = s_most;
        expectEmpty(buffer);
    }
    expectHolds(u"ab" + longText, (buffer += units(u"ab")) += units(longText));
    EXPECT_THROW(buffer.createBuffer(UINT64_MAX), NEBOutOfMemoryError);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(m_buffer);", raisedBy([&] { buffer.truncate(1); }).at(0));
}
}  // namespace
