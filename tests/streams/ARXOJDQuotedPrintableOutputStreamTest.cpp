#include "streams/ARXOJDQuotedPrintableOutputStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

#include "streams/StreamTools.h"
#include "support/Raised.h"

namespace
{
using Filter = ARXOJDQuotedPrintableOutputStream;

std::size_t constexpr s_whole = 1 << 20;  // more than any text here

std::string run(std::size_t count)
{
    return std::string(count, 'a');
}

// Encodes a piece of the first size and then pieces of the other.
std::string encode(std::string const& bytes, bool tabOnlyTrailing, std::size_t first, std::size_t rest)
{
    RecordingOutputStream target;
    {
        Filter filter(target, tabOnlyTrailing);
        for (std::size_t at = 0; at < bytes.size(); at += std::exchange(first, rest))
            filter.write(bytes.data() + at, std::min(first, bytes.size() - at));
    }
    for (std::size_t i = 1; i < target.m_writes.size(); ++i)
        EXPECT_EQ("\r\n", target.m_writes[i - 1].substr(target.m_writes[i - 1].size() - 2));
    return target.m_text;
}

// Decodes by the rules of the encoding, and checks them. Only what must be encoded may be.
std::string decode(std::string const& text, bool tabOnlyTrailing)
{
    std::string bytes;
    for (std::size_t at = 0, next; at < text.size(); at = next + 2)
    {
        next = std::min(text.find("\r\n", at), text.size());
        std::string const line = text.substr(at, next - at);
        EXPECT_LE(line.size(), 76u);
        bool const soft = !line.empty() && line.back() == '=';
        std::size_t const end = line.size() - (soft ? 1 : 0);
        for (std::size_t i = 0; i < end; ++i)
        {
            bool const encoded = line[i] == '=';
            char const byte =
                encoded ? static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16)) : line[i];
            i += encoded ? 2 : 0;
            bool const blank = byte == ' ' || (byte == '\t' && tabOnlyTrailing);
            bool const mayStand = blank ? soft || i + 1 != end : byte > ' ' && byte <= '~' && byte != '=';
            EXPECT_EQ(mayStand, !encoded) << line;
            bytes += byte;
        }
        bytes += soft || next == text.size() ? "" : "\r\n";
    }
    return bytes;
}
}  // namespace

struct ExampleCase
{
    std::string m_bytes, m_text;
    bool m_tabOnlyTrailing = false;
};

ExampleCase const s_exampleCases[] = {
    {run(76) + "\n", run(76) + "\r\n"},
    {run(77) + "\n", run(75) + "=\r\naa\r\n"},
    {run(76), run(76)},
    {run(73) + "=b", run(73) + "=\r\n=3Db"},
    {run(74) + "=", run(74) + "=\r\n=3D"},
    {run(75) + "=", run(75) + "=\r\n=3D"},
    {run(76) + "=", run(75) + "=\r\na=3D"},
    {run(73) + " \n", run(73) + "=20\r\n"},
    {run(74) + " \n", run(74) + "=\r\n=20\r\n"},
    {run(75) + " \n", run(75) + "=\r\n=20\r\n"},
    {run(76) + " \n", run(75) + "=\r\na=20\r\n"},
    {run(74) + "  b", run(74) + " =\r\n b"},
    {"abc ", "abc=20"},
    {"a\tb", "a=09b"},
    {"a\tb", "a\tb", true},
    {"a\t\n", "a=09\r\n"},
    {"a\t\n", "a=09\r\n", true},
    {"a\rb", "a=0Db"},
    {"a\r\nb", "a\r\nb"},
    {"a\r\r\n", "a=0D\r\n"},
    {run(74) + "\rb", run(74) + "=\r\n=0Db"},
    {"a\r", "a"},
    {"\r", ""},
    {"\n\r\n\n", "\r\n\r\n\r\n"},
    {std::string("\xE9=\x7F\0", 4), "=E9=3D=7F=00"},
};

TEST(ARXOJDQuotedPrintableOutputStreamWrite, GivesTheSameTextAtEverySplit)
{
    for (auto const& [bytes, text, tabOnlyTrailing] : s_exampleCases)
    {
        EXPECT_EQ(text, encode(bytes, tabOnlyTrailing, 1, 1));
        for (std::size_t split = 1; split <= bytes.size(); ++split)
            EXPECT_EQ(text, encode(bytes, tabOnlyTrailing, split, s_whole)) << "split at " << split;
    }
}

TEST(ARXOJDQuotedPrintableOutputStreamWrite, RandomBytesComeBackFromLinesOfAtMost76)
{
    std::mt19937 random(1);
    std::string const edges = "ab \t=\r\nz<>~\x7F\x80\xFF\x1F\x01";
    for (int round = 0; round < 400; ++round)
    {
        // From mostly edges to any byte, so that runs of all lengths meet line ends of all kinds.
        unsigned const odd = 1u << (round % 8);
        bool const tabOnlyTrailing = round % 3 == 0;
        std::string bytes, expected;
        for (int at = 0; at < 600; ++at)
            bytes += random() % odd == 0 ? static_cast<char>(random()) : edges[random() % edges.size()];
        for (char const byte : bytes += "z")
            expected +=
                byte == '\n' && (expected.empty() || expected.back() != '\r') ? "\r\n" : std::string(1, byte);
        std::string const text = encode(bytes, tabOnlyTrailing, 1 + random() % 90, 1 + random() % 90);
        ASSERT_EQ(encode(bytes, tabOnlyTrailing, s_whole, s_whole), text);
        ASSERT_EQ(expected, decode(text, tabOnlyTrailing));
    }
}

// One byte at a time; a line feed is not repeated, since its CRLF stands in the line that is kept.
TEST(ARXOJDQuotedPrintableOutputStreamWrite, GoesOnWithoutLossBehindARefusedLine)
{
    std::string const bytes = run(77) + "\r\nab \n" + run(75) + " \n" + run(74) + "=\rx" + run(300) + "\n";
    for (int accepted = 0; accepted < 9; ++accepted)
    {
        RecordingOutputStream target;
        target.m_accepts = accepted;
        target.m_refuses = 1;
        {
            Filter filter(target, false);
            for (char const& byte : bytes)
                if (!raisedBy([&] { filter.write(&byte, 1); }).empty() && byte != '\n')
                    filter.write(&byte, 1);
        }
        EXPECT_EQ(encode(bytes, false, s_whole, s_whole), target.m_text) << accepted;
    }
}

TEST(ARXOJDQuotedPrintableOutputStreamWrite, StaysInItsBufferWhileTheTargetRefuses)
{
    RecordingOutputStream target;
    target.m_refuses = 1000;
    {
        Filter filter(target, false);
        while (target.m_refuses > 0)
            EXPECT_THROW(filter.write(run(100).data(), 100), std::runtime_error);
        filter.write("b\n", 2);
        target.m_refuses = 1;
        filter.write("lost", 4);
    }
    EXPECT_EQ(run(75) + "=\r\nab\r\n", target.m_text);
    EXPECT_EQ(1000u + 3, target.m_calls.size());
}

TEST(ARXOJDQuotedPrintableOutputStreamWrap, OnlyAWrappedTargetGetsTextAndOnlyInLines)
{
    RecordingOutputStream target, unwrapped;
    {
        Filter filter, other(unwrapped, false);
        filter.write("dropped", 7);
        filter.wrap(target);
        filter.write(nullptr, 1);
        filter.setIsEncodeOnlyTraillingTab(true);
        filter.write("a\tb", 3);
        filter.setIsEncodeOnlyTraillingTab(false);
        filter.write("\tb", 2);
        filter.flush();
        filter.close();
        EXPECT_TRUE(target.m_calls.empty());
        other.write("a", 1);
        other.unWrap();
    }
    EXPECT_EQ("a\tb=09b", target.m_text);
    EXPECT_EQ(1u, target.m_calls.size());
    EXPECT_TRUE(unwrapped.m_calls.empty());
}
