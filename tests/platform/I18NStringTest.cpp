#include "NEBCore/I18NString.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "NEBCore/NEBException.h"
#include "support/Threads.h"

namespace
{
std::u16string units(I18NString const& text)
{
    return reinterpret_cast<char16_t const*>(text.getExternalBuffer());
}

struct Utf8Row
{
    char const* m_name;
    char const* m_bytes;
    std::u16string m_units;
};

TEST(I18NString, ReturnsTheBytesThatItTook)
{
    Utf8Row const rows[] = {
        {"Empty", "", u""},
        {"OneByteEach", "a\x7F", u"a\x7F"},
        {"TwoBytesEach", "\xC2\x80\xDF\xBF", u"\x80\u07FF"},
        {"ThreeBytesEach", "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0800\uD7FF\uE000\uFFFF"},
        {"FourBytesEach", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
        {"NoBytesOfUtf8", "\x80\xFF\xC0\x80\xC1\xBF", u"\xDC80\xDCFF\xDCC0\xDC80\xDCC1\xDCBF"},
        {"TooLongOrSurrogate", "\xE0\x9F\xBF\xED\xA0\x80", u"\xDCE0\xDC9F\xDCBF\xDCED\xDCA0\xDC80"},
        {"TooLongOrTooHigh", "\xF0\x8F\xBF\xBF\xF4\x90\x80\x80",
         u"\xDCF0\xDC8F\xDCBF\xDCBF\xDCF4\xDC90\xDC80\xDC80"},
        {"CutOff", "\xE2\x82z\xF0\x9F\x98", u"\xDCE2\xDC82z\xDCF0\xDC9F\xDC98"}};
    for (Utf8Row const& row : rows)
    {
        EXPECT_EQ(row.m_units, units(I18NString(row.m_bytes))) << row.m_name;
        EXPECT_STREQ(row.m_bytes, I18NString(row.m_bytes).c_str()) << row.m_name;
    }
}

TEST(I18NString, TakesExternalForms)
{
    EXPECT_STREQ("ab", I18NString("abc", nullptr, 2).c_str());
    EXPECT_TRUE(I18NString(nullptr, nullptr, -1, nullptr, nullptr).empty());
    EXPECT_THROW(I18NString("a", "latin1"), NEBException);
    I18NString text(16, nullptr, nullptr);
    for (std::uint32_t size : {8u, 7u, 6u, 0u})
    {
        text.setTo(size ? u"abc" : nullptr, size);
        EXPECT_EQ(std::u16string(u"abc", size / 2).c_str(), units(text)) << size;
    }
    text.setTo(u"\xD800x\xDC7F\xDFFF\xDBFF\xDC00", 12);  // lone surrogates, except the last two
    EXPECT_STREQ("\xED\xA0\x80x\xED\xB1\xBF\xED\xBF\xBF\xF4\x8F\xB0\x80", text.c_str());
}

TEST(I18NString, OffsetsBeyondTheEndCountAsTheEnd)
{
    I18NString const text("ab\xF0\x9F\x98\x80xb");  // six units
    std::vector const found{text.find(u'b', 2), text.find(u'b', 99), text.rfind(u'b', 3), text.rfind(u'y')};
    EXPECT_EQ((std::vector{5, -1, 1, -1}), found);
    std::vector<std::int32_t> next;
    for (std::int32_t offset : {1, 2, 3, 6, 99})
        next.push_back(text.incrementOffset(offset));
    EXPECT_EQ((std::vector{2, 4, 4, 6, 6}), next);
    std::vector<I18NString> const parts{text.substr(4), text.substr(99, 2), text.substring(4, -1),
                                        text.substring(4, 3)};
    EXPECT_EQ((std::vector<I18NString>{"xb", "", "xb", ""}), parts);
}

struct ChangeRow
{
    char const* m_name;
    void (*m_change)(I18NString&);
    char const* m_text;
};

TEST(I18NString, EachChangeRenewsTheUtf8)
{
    ChangeRow const rows[] = {{"AppendUnits", [](I18NString& text) { text.append(u'x', 2); }, "abcxx"},
                              {"AppendItself", [](I18NString& text) { text.append(text); }, "abcabc"},
                              {"Replace", [](I18NString& text) { text.replace(1, 1, u'x', 3); }, "axxxc"},
                              {"Erase", [](I18NString& text) { text.erase(1, -1); }, "a"},
                              {"Remove", [](I18NString& text) { text.remove(); }, ""},
                              {"Move", [](I18NString& text) { text = I18NString("moved"); }, "moved"},
                              {"SetTo", [](I18NString& text) { text.setTo(u"new", 6); }, "new"}};
    for (ChangeRow const& row : rows)
    {
        I18NString text("abc");
        text.c_str();
        row.m_change(text);
        EXPECT_STREQ(row.m_text, text.c_str()) << row.m_name;
    }
}

TEST(I18NString, Utf8OutlivesEachMove)
{
    I18NString first("abc");
    char const* const text = first.c_str();
    I18NString second(std::move(first)), third;
    third = std::move(second);
    EXPECT_EQ(text, third.c_str());
}

TEST(I18NString, AllReadersGetTheSameText)
{
    for (int round = 0; round < 20; ++round)
    {
        I18NString const text(std::string(1000000, 'x').c_str());  // long enough for the readers to overlap
        void const* given[2];
        onThreads(2, [&](int number) { given[number] = text.c_str(); });
        EXPECT_EQ(given[0], given[1]);
    }
}
}  // namespace
