#include "text/ARNEBI18NBuffer.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "support/ExpectAssertion.h"

namespace
{
std::vector<std::size_t>* s_blocks = nullptr;  // sizes of the blocks asked for, while a test looks
int s_liveBlocks = 0;
std::size_t s_largestBlock = std::size_t{1} << 40;
}  // namespace

void* operator new[](std::size_t size)
{
    if (s_blocks)
        s_blocks->push_back(size);
    void* const block = size > s_largestBlock ? nullptr : std::malloc(size);
    if (!block)
        throw std::bad_alloc();
    ++s_liveBlocks;
    return block;
}

void operator delete[](void* block) noexcept
{
    s_liveBlocks -= block != nullptr;
    std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    operator delete[](block);
}

namespace
{
using Text = std::u16string;
using Sizes = std::vector<std::size_t>;

unsigned short const* units(Text const& text)
{
    return reinterpret_cast<unsigned short const*>(text.c_str());
}

ARNEBI18NBuffer make(Text const& text)
{
    return ARNEBI18NBuffer(units(text));
}

I18NString toString(Text const& text)
{
    I18NString result;
    result.setTo(text.c_str(), static_cast<std::uint32_t>(text.size() * 2 + 2));
    return result;
}

bool isInner(ARNEBI18NBuffer const& buffer)
{
    auto const* const place = static_cast<char const*>(buffer.getBuffer());
    auto const* const object = reinterpret_cast<char const*>(&buffer);
    return place >= object && place < object + sizeof buffer;
}

// Everything that shows the content, checksums included: they must be those of a buffer made afresh.
void expectHolds(Text const& text, ARNEBI18NBuffer const& buffer)
{
    ASSERT_EQ(text.size() * 2 + 2, buffer.getSize());
    EXPECT_EQ(text.size() * 2, buffer.getDataSize());
    EXPECT_EQ(text.size(), buffer.getCodepoints());
    EXPECT_FALSE(buffer.empty());
    EXPECT_EQ(0, std::memcmp(text.c_str(), buffer.getBuffer(), buffer.getSize()));
    ARNEBI18NBuffer const fresh(toString(text));
    EXPECT_EQ(fresh.getCrc(), buffer.getCrc());
    EXPECT_EQ(fresh.getCssCrc(), buffer.getCssCrc());
    EXPECT_TRUE(buffer == fresh && buffer == toString(text) && buffer == fresh.getCrc());
    EXPECT_TRUE(buffer.getString() == toString(text));
}

void expectEmpty(ARNEBI18NBuffer const& buffer)
{
    EXPECT_TRUE(buffer.empty());
    EXPECT_EQ(0u, buffer.getSize() + buffer.getDataSize() + buffer.getCodepoints());
    EXPECT_EQ(0, *static_cast<unsigned short const*>(buffer.getBuffer()));
    EXPECT_EQ(0u, buffer.getCrc() + buffer.getCssCrc());
    EXPECT_TRUE(buffer == 0u && buffer == ARNEBI18NBuffer() && buffer != I18NString());
    EXPECT_TRUE(buffer.getString().empty());
}

Text const s_texts[] = {u"a",           u"abc",           Text(14, u'x'),         Text(15, u'x'),
                        Text(16, u'x'), Text(1000, u'y'), u"A\xD83D\xDE00\x0141z"};

TEST(ARNEBI18NBufferContent, IsTheSameFromEverySourceByEveryRoad)
{
    for (Text const& text : s_texts)
    {
        ARNEBI18NBuffer const made(units(text));
        std::vector<ARNEBI18NBuffer> buffers(6, make(u"0123456789abcdef"));
        buffers[0] = units(text);
        buffers[1] = made;
        buffers[2] = toString(text);
        for (std::size_t i = 3; i < buffers.size(); ++i)
            buffers[i].clear();
        buffers[3] += units(text);
        buffers[4] += made;
        buffers[5] += toString(text);
        for (ARNEBI18NBuffer const& buffer : buffers)
            expectHolds(text, buffer);
        expectHolds(text, made);
        expectHolds(text, ARNEBI18NBuffer(made));
        EXPECT_EQ(text.size() <= 15, isInner(made));
    }
    unsigned short const single[] = {0, 0xD800, 'q'};
    for (unsigned short const unit : single)
    {
        ARNEBI18NBuffer buffer(unit), appended;
        expectHolds(Text(1, unit), buffer);
        expectHolds(Text(2, unit), buffer += unit);
        expectHolds(Text(1, unit), buffer = unit);
        expectHolds(Text(1, unit), appended += unit);
    }
}

TEST(ARNEBI18NBufferContent, NoTextIsTheEmptyBufferButALoneTerminatorIsNot)
{
    unsigned short const* const none = nullptr;
    ARNEBI18NBuffer buffer = make(u"abc");
    for (ARNEBI18NBuffer const& empty : {ARNEBI18NBuffer(), ARNEBI18NBuffer(none), make(u"")})
        expectEmpty(buffer = empty);
    expectEmpty(buffer = none);
    expectEmpty(make(Text(20, u'x')) = units(u""));
    expectHolds(u"", buffer = I18NString());
    expectHolds(u"a", buffer += units(u"a"));
    std::uint32_t const crc = buffer.getCrc();
    expectHolds(u"a", ((buffer += none) += units(u"")) += ARNEBI18NBuffer());
    EXPECT_EQ(crc, buffer.getCrc());
}

// A text that ends where memory does, at every place in its last block, and one at an odd address.
TEST(ARNEBI18NBufferContent, NeverReadsIntoAnotherPage)
{
    std::size_t const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto* const memory = static_cast<char*>(
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(MAP_FAILED, static_cast<void*>(memory));
    ASSERT_EQ(0, mprotect(memory + page, page, PROT_NONE));
    for (std::size_t length = 1; length < 40; ++length)
        for (std::size_t back = 0; back < 32; back += 2)
        {
            Text const text(length, u'x');
            char* const place = memory + page - back - (length * 2 + 2);
            std::memset(memory, -1, page);
            std::memcpy(place, text.c_str(), length * 2 + 2);
            EXPECT_EQ(length,
                      ARNEBI18NBuffer(reinterpret_cast<unsigned short const*>(place)).getCodepoints());
        }
    munmap(memory, 2 * page);
}

struct AppendCase
{
    Text m_old, m_source;
    Sizes m_blocks;  // asked for by the append
};

TEST(ARNEBI18NBufferAppend, TakesABlockOfExactlyTheNewSizeOrTheInnerStore)
{
    AppendCase const cases[] = {
        {u"abc", u"d", {}},           {u"abc", u"abc", {}},
        {u"abc", Text(12, u'x'), {}}, {u"abc", Text(13, u'x'), {34}},
        {Text(16, u'x'), u"y", {36}}, {Text(100, u'x'), Text(100, u'y'), {402}},
    };
    for (AppendCase const& c : cases)
    {
        Sizes blocks;
        ARNEBI18NBuffer buffer = make(c.m_old);
        ARNEBI18NBuffer const source = make(c.m_source);
        buffer.reserve(4096);  // too late to change anything
        s_blocks = &blocks;
        buffer += source;
        s_blocks = nullptr;
        EXPECT_EQ(c.m_blocks, blocks);
        expectHolds(c.m_old + c.m_source, buffer);
    }
}

TEST(ARNEBI18NBufferStorage, IsReusedWhereTheContentFits)
{
    Sizes blocks;
    s_blocks = &blocks;
    ARNEBI18NBuffer buffer;
    buffer.reserve(0);
    buffer.reserve(60);
    buffer.reserve(600);
    buffer += make(u"abc");  // into the block
    EXPECT_FALSE(isInner(buffer));
    buffer.truncate(0);
    buffer += units(Text(29, u'x'));
    buffer = units(u"ab");
    buffer.clear();
    buffer = units(u"cd");
    EXPECT_EQ(Sizes{60}, blocks);
    EXPECT_FALSE(isInner(buffer));
    buffer += units(u"e");  // content whose new text fits the object moves into it
    EXPECT_TRUE(isInner(buffer));
    expectHolds(u"cde", buffer);
    buffer = units(Text(30, u'y'));
    s_blocks = nullptr;
    EXPECT_EQ((Sizes{60, 62}), blocks);
}

TEST(ARNEBI18NBufferOwnText, IsTakenBeforeTheBufferChanges)
{
    for (Text const& text : {Text(u"abc"), Text(u"abcdefgh"), Text(15, u'x'), Text(u"abcdefghijklmnopqrst")})
    {
        ARNEBI18NBuffer buffer = make(text);
        auto const own = [&buffer](std::size_t i)
        { return static_cast<unsigned short const*>(buffer.getBuffer()) + i; };
        expectHolds(text + text, buffer += buffer);
        expectHolds(text + text + text.substr(1), buffer += own(text.size() + 1));
        buffer = make(text);
        expectHolds(text + text[1], buffer += *own(1));
        expectHolds(text.substr(2) + text[1], buffer = own(2));
        expectHolds(text.substr(2) + text[1], buffer = own(0));
        expectHolds(text.substr(2) + text[1], buffer = *&buffer);
        expectHolds(Text(1, text[2]), buffer = *own(0));
    }
}

TEST(ARNEBI18NBufferChecksum, FollowsTheBytesAndTheFoldedBytes)
{
    EXPECT_EQ(0x15CC89F0u, make(u"abc").getCrc());
    EXPECT_EQ(0x15CC89F0u, make(u"abc").getCssCrc());
    EXPECT_EQ(0x15CC89F0u, make(u"AbC").getCssCrc());
    EXPECT_NE(0x15CC89F0u, make(u"AbC").getCrc());
    EXPECT_EQ(make(u"\x0161").getCssCrc(), make(u"\x0141").getCssCrc());
    EXPECT_NE(make(u"\x0161").getCrc(), make(u"\x0141").getCrc());
    EXPECT_EQ(make(u"\x6161").getCssCrc(), make(u"\x4161").getCssCrc());  // the high byte folds as well
    for (char16_t const outside : {u'@', u'[', u'\x00C0'})
        EXPECT_EQ(make(Text(1, outside)).getCrc(), make(Text(1, outside)).getCssCrc());
}

TEST(ARNEBI18NBufferTruncate, CutsAndNeverLengthens)
{
    for (std::uint64_t const units : {std::uint64_t{4}, std::uint64_t{5}, std::uint64_t{1} << 63, UINT64_MAX})
    {
        ARNEBI18NBuffer buffer = make(u"abcd");
        buffer.truncate(units);
        expectHolds(u"abcd", buffer);
    }
    ARNEBI18NBuffer buffer = make(u"abcd");
    EXPECT_EQ(0x7545BD5Eu, buffer.getCrc());
    EXPECT_EQ(0x7545BD5Eu, buffer.getCssCrc());
    buffer.truncate(2);
    EXPECT_EQ(0xE34542D4u, buffer.getCrc());
    expectHolds(u"ab", buffer);
    buffer.truncate(0);
    expectHolds(u"", buffer);
    EXPECT_NE(ARNEBI18NBuffer(), buffer);
    buffer.clear();
    expectEmpty(buffer);
}

TEST(ARNEBI18NBufferCompare, LooksAtBothEndsWithoutTheTerminator)
{
    struct Case
    {
        Text m_text, m_part;
        bool m_starts, m_ends;
    };
    for (Case const& c : {Case{u"abc", u"abc", true, true}, Case{u"abc", u"ab", true, false},
                          Case{u"abc", u"bc", false, true}, Case{u"abc", u"abcd", false, false},
                          Case{u"abc", u"abd", false, false}, Case{u"abc", u"", false, false},
                          Case{u"", u"", false, false}, Case{u"", u"a", false, false}})
    {
        EXPECT_EQ(c.m_starts, make(c.m_text).startsWith(make(c.m_part)));
        EXPECT_EQ(c.m_ends, make(c.m_text).endsWith(make(c.m_part)));
        EXPECT_EQ(c.m_text != c.m_part, make(c.m_text) != make(c.m_part));
    }
    ARNEBI18NBuffer const bare{I18NString()};
    EXPECT_FALSE(bare.startsWith(bare) || make(u"a").startsWith(bare) || make(u"a").endsWith(bare));
    EXPECT_TRUE(make(u"abc") != toString(u"abd") && make(u"abc") != 1u);
}

struct OpenBuffer : ARNEBI18NBuffer
{
    using ARNEBI18NBuffer::ARNEBI18NBuffer;
    using ARNEBI18NBuffer::createBuffer;
    using ARNEBI18NBuffer::reset;
};

TEST(ARNEBI18NBufferMemory, LackOfItLeavesAUsableEmptyBuffer)
{
    Text const longText(200, u'l');
    int const before = s_liveBlocks;
    for (Text const& old : {Text(), Text(u"abc"), Text(100, u'o')})
        for (bool const appends : {false, true})
        {
            ARNEBI18NBuffer buffer = make(old);
            s_largestBlock = 0;
            EXPECT_THROW(appends ? buffer += units(longText) : buffer = units(longText), NEBOutOfMemoryError);
            s_largestBlock = std::size_t{1} << 40;
            EXPECT_EQ(before, s_liveBlocks);
            expectEmpty(buffer);
            expectHolds(u"ab", buffer += units(u"ab"));
            expectHolds(u"ab" + longText, buffer += units(longText));
        }
    ARNEBI18NBuffer buffer;
    EXPECT_THROW(buffer.reserve(UINT64_MAX), NEBOutOfMemoryError);
    expectEmpty(buffer);
    expectHolds(longText, buffer = units(longText));
}

TEST(ARNEBI18NBufferMemory, DerivedClassesSeeTheStorage)
{
    OpenBuffer buffer(units(u"abcd"));
    buffer.reset();
    EXPECT_TRUE(buffer.empty());
    EXPECT_EQ('a', *static_cast<unsigned short const*>(buffer.getBuffer()));  // unlike clear
    static_cast<ARNEBI18NBuffer&>(buffer) = units(u"abcd");
    EXPECT_THROW(buffer.createBuffer(UINT64_MAX), NEBOutOfMemoryError);
    expectAssertion("NEB_ASSERT(m_buffer);", [&] { buffer.truncate(1); });
    buffer.clear();
    expectEmpty(buffer);
}

TEST(ARNEBI18NBufferOutput, WritesUtf8AndReplacesStrings)
{
    ARNEBI18NBuffer buffer = make(u"a\x00E9\xD83D\xDE00");
    std::ostringstream stream;
    stream << buffer << '|' << static_cast<ARNEBI18NBuffer const&>(buffer) << '|' << ARNEBI18NBuffer();
    EXPECT_EQ("a\xC3\xA9\xF0\x9F\x98\x80|a\xC3\xA9\xF0\x9F\x98\x80|", stream.str());
    I18NString text("old");
    buffer.getString(text);
    EXPECT_TRUE(text == toString(u"a\x00E9\xD83D\xDE00"));
    ARNEBI18NBuffer().getString(text);
    EXPECT_TRUE(text.empty());
}
}  // namespace
