#include "url/ARXHelper.h"

#include <cstring>
#include <memory>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
std::string encode(void const* input, std::size_t size, bool keepAscii)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    ARXHelper::urlEncode(input, size, output, keepAscii);
    return std::string(output.str(), output.pcount());
}

std::string encode(std::u16string const& text, bool keepAscii)
{
    return encode(text.data(), text.size() * sizeof(char16_t), keepAscii);
}

class ARXHelperTest : public RecordedTest
{
};
}  // namespace

TEST_F(ARXHelperTest, EncodesUnits)
{
    struct
    {
        std::u16string m_text;
        char const* m_encoded;
        char const* m_kept;
    } const s_cases[] = {
        {u"", "", ""},
        {u"a b+c", "a+b%2bc", "a b+c"},
        {u"~!'\"%\n\x7F", "%7e%21%27%22%25%0a%7f", "~!'\"%\n\x7F"},
        {u"\u0080\u00E9\u07FF", "%c2%80%c3%a9%df%bf", "%c2%80%c3%a9%df%bf"},
        {u"\u0800\u20AC\uFFFF", "%e0%a0%80%e2%82%ac%ef%bf%bf", "%e0%a0%80%e2%82%ac%ef%bf%bf"},
        {u"\U0001F600", "%ed%a0%bd%ed%b8%80", "%ed%a0%bd%ed%b8%80"},
    };
    for (auto const& row : s_cases)
    {
        EXPECT_EQ(row.m_encoded, encode(row.m_text, false));
        EXPECT_EQ(row.m_kept, encode(row.m_text, true));

        I18NString text;
        text.setTo(row.m_text.c_str(), static_cast<std::uint32_t>(2 * row.m_text.size() + 2));
        NEBByteBuffer output(256, 256);
        output << "before";
        ARXHelper::urlEncode(text, output, false);
        EXPECT_EQ(row.m_encoded, std::string(output.str(), output.pcount()));
    }
}

TEST_F(ARXHelperTest, PassesLettersDigitsSixSignsAndNoOtherAscii)
{
    char const passed[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789()*-._";
    for (char16_t unit = 0; unit < 0x80; ++unit)
    {
        char escape[8];
        std::snprintf(escape, sizeof escape, "%%%02x", unsigned(unit));
        bool const isPassed = unit != 0 && std::strchr(passed, unit);
        std::string const expected = isPassed ? std::string(1, char(unit)) : unit == u' ' ? "+" : escape;
        EXPECT_EQ(expected, encode(&unit, 2, false));
        EXPECT_EQ(std::string(1, char(unit)), encode(&unit, 2, true));
    }
}

TEST_F(ARXHelperTest, LongTextsEqualTheirPartsAtAnyAddress)
{
    std::u16string text;
    std::string expected;
    for (int i = 0; i < 1500; ++i)
    {
        text += i % 5 == 0 ? char16_t(0x30 * i) : i < 700 ? u'\uFFFF' : u'a';
        expected += encode(text.substr(text.size() - 1), false);
    }
    EXPECT_EQ(expected, encode(text, false));
    std::vector<char> shifted(2 * text.size() + 2, 'x');
    std::memcpy(&shifted[1], text.data(), 2 * text.size());
    EXPECT_EQ(expected, encode(&shifted[1], 2 * text.size() + 1, false));
}

TEST_F(ARXHelperTest, NullIsNoInputAndLeavesTheOutput)
{
    EXPECT_EQ("", encode(nullptr, 0, false));
    EXPECT_EQ("", encode(u"a", 1, false));
    NEBByteBuffer output(256, 256);
    output << "before";
    EXPECT_EQ((Lines{"NEBAssertError: NEB_ASSERT(input);", "url/ARXHelper.cpp NEB_THROW"}),
              raisedBy([&] { ARXHelper::urlEncode(nullptr, 2, output, false); }));
    EXPECT_EQ("before", std::string(output.str(), output.pcount()));
}

TEST_F(ARXHelperTest, MakesWeb64Text)
{
    struct
    {
        std::string m_bytes;
        char const* m_text;
    } const s_cases[] = {
        {"", ""}, {"f", "Zg"}, {"fo", "Zm8"}, {"foo", "Zm9v"}, {std::string("\xFF\0\xFE\xFB", 4), "_wD--w"}};
    for (auto const& row : s_cases)
    {
        NEBByteBuffer bytes(256, 256);
        bytes.appendChars(row.m_bytes.data(), row.m_bytes.size());
        EXPECT_STREQ(row.m_text, std::unique_ptr<char[]>(ARXHelper::createWeb64(bytes)).get());
    }
}

TEST_F(ARXHelperTest, RewritesTexts)
{
    using Operation = void (*)(I18NString&);
    Operation const cut = ARXHelper::removeLastComponentFromUrl;
    Operation const fix = ARXHelper::fixCommandPath;
    struct
    {
        Operation m_operation;
        char const* m_before;
        char const* m_after;
    } const s_cases[] = {
        {cut, "a/b/c", "a/b/"},
        {cut, "a/b/", "a/b/"},
        {cut, "/abc", "/abc"},
        {cut, "abc", "abc"},
        {cut, "", ""},
        {cut, "\U0001F600/\U0001F600", "\U0001F600/"},
        {fix, "a/b c/d e", "a\\\"b c\"\\\"d e\""},
        {fix, "a b/", "\"a b\"\\"},
        {fix, "/x", "\\x"},
        {fix, "x", "x"},
        {fix, "a\tb", "a\tb"},
        {fix, "a\\/ \"", "a\\\\\" \"\""},
        {fix, "", ""},
        {fix, " ", "\" \""},
    };
    for (auto const& row : s_cases)
    {
        I18NString text(row.m_before);
        row.m_operation(text);
        EXPECT_STREQ(row.m_after, text.c_str());
    }
}

TEST_F(ARXHelperTest, ReadsBasePaths)
{
    m_recorder.m_settings = {{"gatewayUrl", "http://gate/way/x"}, {"externalDispatcherUrl", "http://disp/x"}};
    I18NString path("before");
    ARXHelper::getGatewayBasePath(path, false);
    EXPECT_STREQ("http://gate/way/x", path.c_str());
    ARXHelper::getGatewayBasePath(path, true);
    EXPECT_STREQ("http://gate/way/", path.c_str());
    ARXHelper::getBasePath(path, false);
    EXPECT_STREQ("http://gate/way/x", path.c_str());
    ARXHelper::getExternalDispatcherBasePath(path);
    EXPECT_STREQ("http://disp/x", path.c_str());
    m_recorder.m_settings.clear();
    ARXHelper::getBasePath(path, true);
    EXPECT_STREQ("", path.c_str());
}
