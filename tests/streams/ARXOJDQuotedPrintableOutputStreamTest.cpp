#include "streams/ARXOJDQuotedPrintableOutputStream.h"

#include "streams/StreamTools.h"

namespace
{
using Filter = ARXOJDQuotedPrintableOutputStream;

std::size_t constexpr s_whole = 1 << 20;  // more than any text here
std::string const a73(73, 'a'), a74(74, 'a'), a75(75, 'a'), a76(76, 'a');

// Encodes in pieces of one size.
std::string encode(std::string const& bytes, bool tabOnlyTrailing = false, std::size_t size = s_whole)
{
    RecordingOutputStream target;
    {
        Filter filter(target, tabOnlyTrailing);
        for (std::size_t at = 0; at < bytes.size(); at += size)
            filter.write(bytes.data() + at, std::min(size, bytes.size() - at));
    }
    for (std::size_t i = 1; i < target.m_calls.size(); ++i)  // one write a line
        EXPECT_EQ("\r\n", target.m_calls[i - 1].substr(target.m_calls[i - 1].size() - 2));
    return joined(target.m_calls, "");
}

struct TextRow
{
    char const* m_name;
    std::string m_bytes;
    std::string m_text;
};

TEST(ARXOJDQuotedPrintableOutputStreamWrite, GivesTheSameTextInAnyPieces)
{
    TextRow const rows[] = {
        {"FullLines", a76 + "\n" + a76 + "a\n" + a76, a76 + "\r\n" + a75 + "=\r\naa\r\n" + a76},
        {"EncodedAfter73", a73 + "=b", a73 + "=\r\n=3Db"},
        {"EncodedAfter74", a74 + "=", a74 + "=\r\n=3D"},
        {"EncodedAfter76", a76 + "=", a75 + "=\r\na=3D"},
        {"CarriageReturnAfter74", a74 + "\rb", a74 + "=\r\n=0Db"},
        {"BlankAfter73", a73 + " \n", a73 + "=20\r\n"},
        {"BlankAfter74", a74 + " \n", a74 + "=\r\n=20\r\n"},
        {"BlankAfter76", a76 + " \n", a75 + "=\r\na=20\r\n"},
        {"BlankAtASoftBreak", a74 + "  b\nabc ", a74 + " =\r\n b\r\nabc=20"},
        {"Tabs", "a\tb\t\n", "a=09b=09\r\n"},
        {"CarriageReturns", "a\rb\r\nb\r\r\n\n\r", "a=0Db\r\nb=0D\r\n\r\n"},
        {"Bytes", {"\xE9=\x7F\0\x1F !<>~\x80", 11}, "=E9=3D=7F=00=1F !<>~=80"}};
    for (TextRow const& row : rows)
        for (std::size_t const size : {std::size_t{1}, std::size_t{7}, s_whole})
            EXPECT_EQ(row.m_text, encode(row.m_bytes, false, size)) << row.m_name << size;
    EXPECT_EQ("a\tb=09\r\n=09", encode("a\tb\t\n\t", true));
}

// One byte at a time: given again unless it is a line feed that was taken.
TEST(ARXOJDQuotedPrintableOutputStreamWrite, GoesOnWithoutLossAfterRefusalsOfALine)
{
    std::string const bytes = a76 + "a\r\nab \n\n\n" + a75 + " \n" + a74 + "=\rx" + a76 + a76 + a76 + "\nz";
    for (int accepts = 0; accepts < 9; ++accepts)
    {
        RecordingOutputStream target;
        target.m_accepts = accepts;
        target.m_refuses = 3;
        {
            Filter filter(target, false);
            for (char const byte : bytes)
                for (bool isTaken = false; !isTaken;)
                    isTaken = raisedBy([&] { filter.write(&byte, 1); }).empty() ||
                              (byte == '\n' && target.m_refuses == 2);
        }
        EXPECT_EQ(encode(bytes), joined(target.m_calls, "")) << accepts;
    }
}

TEST(ARXOJDQuotedPrintableOutputStreamWrap, OnlyAWrappedTargetGetsText)
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
        other.write("a", 1);
        other.unWrap();
        EXPECT_EQ(Lines(), target.m_calls);
    }
    EXPECT_EQ(Lines{"a\tb=09b"}, target.m_calls);
    EXPECT_EQ(Lines(), unwrapped.m_calls);
}
}  // namespace
