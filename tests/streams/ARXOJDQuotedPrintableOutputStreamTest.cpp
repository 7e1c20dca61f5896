#include "streams/ARXOJDQuotedPrintableOutputStream.h"

#include <utility>

#include "streams/StreamTools.h"

namespace
{
using Filter = ARXOJDQuotedPrintableOutputStream;

std::size_t constexpr s_whole = 1 << 20;  // more than any text here
std::string const a73(73, 'a'), a74(74, 'a'), a75(75, 'a'), a76(76, 'a');

// Encodes a piece of the first size and then pieces of the other.
std::string encode(std::string const& bytes, bool tabOnlyTrailing = false, std::size_t first = s_whole,
                   std::size_t rest = s_whole)
{
    RecordingOutputStream target;
    {
        Filter filter(target, tabOnlyTrailing);
        for (std::size_t at = 0; at < bytes.size(); at += std::exchange(first, rest))
            filter.write(bytes.data() + at, std::min(first, bytes.size() - at));
    }
    for (std::size_t i = 1; i < target.m_calls.size(); ++i)  // one write a line
        EXPECT_EQ("\r\n", target.m_calls[i - 1].substr(target.m_calls[i - 1].size() - 2));
    return joined(target.m_calls, "");
}

std::string decode(std::string const& text)
{
    std::string bytes, code;
    for (std::size_t at = 0; at < text.size(); at += 1 + code.size())
    {
        code = text[at] == '=' ? text.substr(at + 1, 2) : "";
        if (code != "\r\n")
            bytes += code.empty() ? text[at] : static_cast<char>(std::stoi(code, nullptr, 16));
    }
    return bytes;
}

TEST(ARXOJDQuotedPrintableOutputStreamWrite, GivesTheSameTextAtEverySplit)
{
    // A hard line end leaves nothing behind, so a row joins what belongs together.
    std::pair<std::string, std::string> const examples[] = {
        {a76 + "\n" + a76 + "a\n" + a76, a76 + "\r\n" + a75 + "=\r\naa\r\n" + a76},
        {a73 + "=b\n" + a74 + "=\n" + a75 + "=",
         a73 + "=\r\n=3Db\r\n" + a74 + "=\r\n=3D\r\n" + a75 + "=\r\n=3D"},
        {a76 + "=\n" + a74 + "\rb", a75 + "=\r\na=3D\r\n" + a74 + "=\r\n=0Db"},
        {a73 + " \n" + a74 + " \n" + a75 + " \n",
         a73 + "=20\r\n" + a74 + "=\r\n=20\r\n" + a75 + "=\r\n=20\r\n"},
        {a76 + " \n" + a74 + "  b\nabc ", a75 + "=\r\na=20\r\n" + a74 + " =\r\n b\r\nabc=20"},
        {"a\tb\t\na\rb\r\nb\r\r\n\n\r", "a=09b=09\r\na=0Db\r\nb=0D\r\n\r\n"},
        {{"\xE9=\x7F\0\x1F !<>~\x80", 11}, "=E9=3D=7F=00=1F !<>~=80"}};
    for (auto const& [bytes, text] : examples)
        for (std::size_t split = 1; split <= bytes.size(); ++split)
            for (std::size_t const rest : {std::size_t{1}, s_whole})
                EXPECT_EQ(text, encode(bytes, false, split, rest)) << split << " " << rest;
    EXPECT_EQ("a\tb=09\r\n=09", encode("a\tb\t\n\t", true));
}

TEST(ARXOJDQuotedPrintableOutputStreamWrite, RandomBytesComeBackFromLinesOfAtMost76)
{
    std::mt19937 random(1);
    Lines const edges = {"a", " ", "\t", "=", "\r", "\r\n", "z\r\n", "<", ">", "~", "\x7F", "\x80", "\x1F"};
    for (int round = 0; round < 400; ++round)
    {
        // From mostly edges to any byte, so that runs of all lengths meet line ends of all kinds.
        unsigned const odd = 1u << (round % 8);
        std::string bytes;
        for (int at = 0; at < 600; ++at)
            bytes += random() % odd == 0 ? std::string(1, static_cast<char>(random() | 1))
                                         : edges[random() % edges.size()];
        bytes += "z";
        std::string const text = encode(bytes, round % 3 == 0, 1 + random() % 90, 1 + random() % 90);
        ASSERT_EQ(encode(bytes, round % 3 == 0), text);
        ASSERT_EQ(bytes, decode(text));
        for (std::size_t at = 0, end; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2)
            ASSERT_TRUE(end - at <= 76 && (end == at || (text[end - 1] != ' ' && text[end - 1] != '\t')));
    }
}

// One byte at a time; a line feed is not repeated, since its CRLF stands in the line that is kept.
TEST(ARXOJDQuotedPrintableOutputStreamWrite, GoesOnWithoutLossBehindRefusalsOfALine)
{
    std::string const bytes = a76 + "a\r\nab \n" + a75 + " \n" + a74 + "=\rx" + a76 + a76 + a76 + a76 + "\nz";
    for (int round = 0; round < 18; ++round)
    {
        RecordingOutputStream target;
        target.m_accepts = round / 2, target.m_refuses = round % 2 ? 100 : 1;
        {
            Filter filter(target, false);
            for (char const& byte : bytes)
                while (!raisedBy([&] { filter.write(&byte, 1); }).empty() && byte != '\n')
                    continue;
        }
        EXPECT_EQ(encode(bytes), joined(target.m_calls, "")) << round;
    }
}

TEST(ARXOJDQuotedPrintableOutputStreamWrap, OnlyAWrappedTargetGetsTextAndOnlyInLines)
{
    RecordingOutputStream target, unwrapped, refusing;
    refusing.m_refuses = 1;
    {
        Filter filter, other(unwrapped, false), lost(refusing, false);
        filter.write("dropped", 7), filter.wrap(target), filter.write(nullptr, 1);
        filter.setIsEncodeOnlyTraillingTab(true), filter.write("a\tb", 3);
        filter.setIsEncodeOnlyTraillingTab(false), filter.write("\tb", 2);
        filter.flush(), filter.close(), lost.write("a", 1), other.write("a", 1), other.unWrap();
        EXPECT_EQ(Lines(), target.m_calls);
    }
    EXPECT_EQ(Lines{"a\tb=09b"}, target.m_calls);
    EXPECT_TRUE(unwrapped.m_calls.empty() && refusing.m_calls.empty());
}
}  // namespace
