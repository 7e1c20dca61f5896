#include "streams/ARXOJDQuotedPrintableOutputStream.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <utility>

#include "streams/RecordingOutputStream.h"

namespace
{
using Filter = ARXOJDQuotedPrintableOutputStream;

std::string run(std::size_t count)
{
    return std::string(count, 'a');
}

// Encodes pieces of the sizes that nextSize gives.
std::string encode(std::string const& bytes, bool tabOnlyTrailing,
                   std::function<std::size_t()> const& nextSize)
{
    RecordingOutputStream target;
    {
        Filter filter(target, tabOnlyTrailing);
        for (std::size_t at = 0, size; at < bytes.size(); at += size)
        {
            size = std::min(nextSize(), bytes.size() - at);
            filter.write(bytes.data() + at, size);
        }
    }
    for (std::size_t i = 1; i < target.m_writes.size(); ++i)
        EXPECT_EQ("\r\n", target.m_writes[i - 1].substr(target.m_writes[i - 1].size() - 2));
    return target.text();
}

std::string literalOrEncoded(unsigned char byte)
{
    char encoded[4];
    std::snprintf(encoded, sizeof encoded, "=%02X", byte);
    return byte >= 0x20 && byte <= 0x7E && byte != '=' ? std::string(1, static_cast<char>(byte)) : encoded;
}

// Decodes by the rules of the encoding, and checks them.
std::string decode(std::string const& text)
{
    std::string bytes;
    for (std::size_t at = 0, next; at < text.size(); at = next + 2)
    {
        next = std::min(text.find("\r\n", at), text.size());
        std::string const line = text.substr(at, next - at);
        EXPECT_LE(line.size(), 76u);
        EXPECT_TRUE(line.empty() || (line.back() != ' ' && line.back() != '\t')) << line;
        bool const soft = !line.empty() && line.back() == '=';
        for (std::size_t i = 0; i + (soft ? 1 : 0) < line.size(); ++i)
        {
            bool const encoded = line[i] == '=';
            bytes += encoded ? static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16)) : line[i];
            i += encoded ? 2 : 0;
        }
        bytes += soft || next == text.size() ? "" : "\r\n";
    }
    return bytes;
}
}  // namespace

struct ExampleCase
{
    char const* m_name;
    std::string m_bytes;
    std::string m_text;
    bool m_tabOnlyTrailing = false;
};

ExampleCase const s_exampleCases[] = {
    {"FullLine", run(76) + "\n", run(76) + "\r\n"},
    {"OneMoreThanFull", run(77) + "\n", run(75) + "=\r\naa\r\n"},
    {"FullLineByDestruction", run(76), run(76)},
    {"EncodedByteMovesWhole", run(73) + "=b", run(73) + "=\r\n=3Db"},
    {"EncodedByteFills", run(73) + "=\n", run(73) + "=3D\r\n"},
    {"EncodedByteAt74", run(74) + "=", run(74) + "=\r\n=3D"},
    {"EncodedByteAt75", run(75) + "=", run(75) + "=\r\n=3D"},
    {"EncodedByteAt76", run(76) + "=", run(75) + "=\r\na=3D"},
    {"BlankAfter73", run(73) + " \n", run(73) + "=20\r\n"},
    {"BlankAfter74", run(74) + " \n", run(74) + "=\r\n=20\r\n"},
    {"BlankAfter75", run(75) + " \n", run(75) + "=\r\n=20\r\n"},
    {"BlankAfter76", run(76) + " \n", run(75) + "=\r\na=20\r\n"},
    {"BlankBeforeSoftBreak", run(74) + "  b", run(74) + " =\r\n b"},
    {"BlankAtTheEnd", "abc ", "abc=20"},
    {"BlankAtTheEndAfter75", run(75) + " ", run(75) + "=\r\n=20"},
    {"Tab", "a\tb", "a=09b"},
    {"TabLiteral", "a\tb", "a\tb", true},
    {"TrailingTab", "a\t\n", "a=09\r\n"},
    {"TrailingTabLiteralElsewhere", "a\t\n", "a=09\r\n", true},
    {"TrailingTabAfter75", run(75) + "\t\n", run(75) + "=\r\n=09\r\n", true},
    {"CarriageReturnAlone", "a\rb", "a=0Db"},
    {"CarriageReturnLineFeed", "a\r\nb", "a\r\nb"},
    {"TwoCarriageReturns", "a\r\r\n", "a=0D\r\n"},
    {"CarriageReturnAfter74", run(74) + "\rb", run(74) + "=\r\n=0Db"},
    {"CarriageReturnAfter76", run(76) + "\r\n", run(76) + "\r\n"},
    {"CarriageReturnAtTheEnd", "a\r", "a"},
    {"OnlyCarriageReturn", "\r", ""},
    {"EmptyLines", "\n\r\n\n", "\r\n\r\n\r\n"},
    {"NotLiteral", std::string("\xE9=\x7F\0", 4), "=E9=3D=7F=00"},
};

class ARXOJDQuotedPrintableOutputStreamExample : public testing::TestWithParam<ExampleCase>
{
};

TEST_P(ARXOJDQuotedPrintableOutputStreamExample, GivesTheSameTextAtEverySplit)
{
    ExampleCase const& example = GetParam();
    auto const encoded = [&](std::size_t first, std::size_t rest) {
        return encode(example.m_bytes, example.m_tabOnlyTrailing, [&] { return std::exchange(first, rest); });
    };
    EXPECT_EQ(example.m_text, encoded(1, 1));
    for (std::size_t split = 1; split <= example.m_bytes.size(); ++split)
        EXPECT_EQ(example.m_text, encoded(split, SIZE_MAX)) << "split at " << split;
}

INSTANTIATE_TEST_SUITE_P(Texts, ARXOJDQuotedPrintableOutputStreamExample, testing::ValuesIn(s_exampleCases),
                         [](auto const& example) { return example.param.m_name; });

TEST(ARXOJDQuotedPrintableOutputStreamWrite, EncodesEveryPairOfBytesByItself)
{
    for (unsigned pair = 0; pair < 0x10000; ++pair)
    {
        unsigned char const bytes[] = {static_cast<unsigned char>(pair >> 8),
                                       static_cast<unsigned char>(pair)};
        if (std::string("\r\n").find_first_of(reinterpret_cast<char const*>(bytes), 0, 2) !=
            std::string::npos)
            continue;
        std::string const text(bytes, bytes + 2);
        ASSERT_EQ(literalOrEncoded(bytes[0]) + literalOrEncoded(bytes[1]) + "aaaaaa",
                  encode(text + "aaaaaa", false, [] { return SIZE_MAX; }));
    }
}

TEST(ARXOJDQuotedPrintableOutputStreamWrite, RandomBytesComeBackFromLinesOfAtMost76)
{
    std::mt19937 random(1);
    for (int round = 0; round < 400; ++round)
    {
        // From mostly text to any byte, so that runs of all lengths meet line ends of all kinds.
        unsigned const odd = 1u << (round % 8);
        std::string bytes, expected;
        for (int at = 0; at < 600; ++at)
            bytes += static_cast<char>(random() % odd == 0 ? random() : "ab \t=\r\nz"[random() % 8]);
        for (char const byte : bytes += "z")
            expected +=
                byte == '\n' && (expected.empty() || expected.back() != '\r') ? "\r\n" : std::string(1, byte);

        bool const tabOnlyTrailing = round % 2 != 0;
        std::string const text = encode(bytes, tabOnlyTrailing, [&] { return 1 + random() % 90; });
        ASSERT_EQ(encode(bytes, tabOnlyTrailing, [] { return SIZE_MAX; }), text);
        ASSERT_EQ(expected, decode(text));
    }
}

TEST(ARXOJDQuotedPrintableOutputStreamWrite, GoesOnWithoutLossBehindARefusedLine)
{
    std::string const bytes =
        run(77) + "\r\nab \n" + run(75) + " \n\n" + run(74) + "=\rx" + run(80) + "\n" + run(300) + "\n";
    std::string const text = encode(bytes, false, [] { return SIZE_MAX; });
    for (int variant = 0; variant < 8 * 3; ++variant)
    {
        RecordingOutputStream target;
        target.m_accepts = variant / 3;
        target.m_refuses = 1 + variant % 3;
        {
            Filter filter(target, false);
            bool isLineKept = false;
            for (std::size_t at = 0; at < bytes.size();)
                try
                {
                    filter.write(&bytes[at], 1);
                    isLineKept = false;
                    ++at;
                }
                catch (std::runtime_error const&)
                {
                    at += !isLineKept && bytes[at] == '\n' ? 1 : 0;  // its line end stands in the kept line
                    isLineKept = true;
                }
        }
        EXPECT_EQ(text, target.text()) << variant;
    }
}

TEST(ARXOJDQuotedPrintableOutputStreamWrite, StaysInItsBufferWhileTheTargetRefuses)
{
    RecordingOutputStream target;
    target.m_refuses = 1000;
    {
        Filter filter(target, false);
        for (int i = 0; i < target.m_refuses + i; ++i)
            EXPECT_THROW(filter.write(run(100).data(), 100), std::runtime_error);
        filter.write("b\n", 2);
        target.m_refuses = 1;
        filter.write("lost", 4);
    }
    EXPECT_EQ(run(75) + "=\r\nab\r\n", target.text());
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
        filter.write("a", 1);
        filter.flush();
        filter.close();
        filter.setIsEncodeOnlyTraillingTab(true);
        filter.write("\tb", 2);
        filter.setIsEncodeOnlyTraillingTab(false);
        filter.write("\tb", 2);
        EXPECT_TRUE(target.m_calls.empty());
        other.write("a", 1);
        other.unWrap();
    }
    EXPECT_EQ(std::vector<std::string>{"a\tb=09b"}, target.m_writes);
    EXPECT_EQ(std::vector<std::string>{"write"}, target.m_calls);
    EXPECT_TRUE(unwrapped.m_calls.empty());
}
