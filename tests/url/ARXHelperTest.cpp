#include "url/ARXHelper.h"

#include <cstring>
#include <memory>
#include <tuple>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
template <class... Input>
std::string encode(bool keepAscii, Input const&... input)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    ARXHelper::urlEncode(input..., output, keepAscii);
    return std::string(output.str(), output.pcount());
}

using ARXHelperTest = RecordedTest;
}  // namespace

TEST_F(ARXHelperTest, EncodesUnits)
{
    std::tuple<std::u16string, char const*, char const*> const s_cases[] = {
        {u"", "", ""},
        {u"a b+c", "a+b%2bc", "a b+c"},
        {u"~!'\"%\n\x7F", "%7e%21%27%22%25%0a%7f", "~!'\"%\n\x7F"},
        {u"\u0080\u00E9\u07FF", "%c2%80%c3%a9%df%bf", "%c2%80%c3%a9%df%bf"},
        {u"\u0800\u20AC\uFFFF", "%e0%a0%80%e2%82%ac%ef%bf%bf", "%e0%a0%80%e2%82%ac%ef%bf%bf"},
        {u"\U0001F600", "%ed%a0%bd%ed%b8%80", "%ed%a0%bd%ed%b8%80"},
    };
    for (auto const& [units, encoded, kept] : s_cases)
    {
        I18NString text;
        text.setTo(units.c_str(), static_cast<std::uint32_t>(2 * units.size() + 2));
        EXPECT_EQ(encoded, encode(false, text));
        EXPECT_EQ(kept, encode(true, text));
    }
}

TEST_F(ARXHelperTest, PassesLettersDigitsSixSignsAndNoOtherAscii)
{
    char const passed[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789()*-._";
    for (char16_t unit = 0; unit < 0x80; ++unit)
    {
        char escape[8];
        std::snprintf(escape, sizeof escape, "%%%02x", unsigned(unit));
        std::string const kept(1, char(unit));
        bool const isPassed = unit != 0 && std::strchr(passed, unit);
        EXPECT_EQ(isPassed ? kept : unit == u' ' ? "+" : escape, encode(false, &unit, 2u));
        EXPECT_EQ(kept, encode(true, &unit, 2u));
    }
}

TEST_F(ARXHelperTest, LongTextsEqualTheirPartsAtAnyAddress)
{
    std::u16string text;
    std::string expected;
    for (int i = 0; i < 1500; ++i)
    {
        text += i % 5 == 0 ? char16_t(0x30 * i) : i < 700 ? u'\uFFFF' : u'a';
        expected += encode(false, &text.back(), 2u);
    }
    std::vector<char> shifted(2 * text.size() + 2, 'x');
    std::memcpy(&shifted[1], text.data(), 2 * text.size());
    EXPECT_EQ(expected, encode(false, text.data(), 2 * text.size()));
    EXPECT_EQ(expected, encode(false, &shifted[1], 2 * text.size() + 1));
}

TEST_F(ARXHelperTest, NullIsNoInputAndLeavesTheOutput)
{
    EXPECT_EQ("", encode(false, nullptr, 0u));
    EXPECT_EQ("", encode(false, "a", 1u));
    NEBByteBuffer output(256, 256);
    output << "before";
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(input); | url/ARXHelper.cpp NEB_THROW",
              joined(raisedBy([&] { ARXHelper::urlEncode(nullptr, 2, output, false); })));
    EXPECT_EQ("before", std::string(output.str(), output.pcount()));
}

TEST_F(ARXHelperTest, MakesWeb64Text)
{
    std::pair<std::string, char const*> const s_cases[] = {
        {"", ""}, {"f", "Zg"}, {"fo", "Zm8"}, {"foo", "Zm9v"}, {std::string("\xFF\0\xFE\xFB", 4), "_wD--w"}};
    for (auto const& [data, text] : s_cases)
    {
        NEBByteBuffer bytes(256, 256);
        bytes.appendChars(data.data(), data.size());
        EXPECT_STREQ(text, std::unique_ptr<char[]>(ARXHelper::createWeb64(bytes)).get());
    }
}

TEST_F(ARXHelperTest, RewritesTexts)
{
    auto* const cut = ARXHelper::removeLastComponentFromUrl;
    auto* const fix = ARXHelper::fixCommandPath;
    std::tuple<void (*)(I18NString&), char const*, char const*> const s_cases[] = {
        {cut, "a/b/c", "a/b/"},
        {cut, "a/b/", "a/b/"},
        {cut, "/abc", "/abc"},
        {cut, "abc", "abc"},
        {cut, "\U0001F600/\U0001F600", "\U0001F600/"},
        {fix, "a/b c/d e", "a\\\"b c\"\\\"d e\""},
        {fix, "a b/", "\"a b\"\\"},
        {fix, "/x", "\\x"},
        {fix, "a\tb", "a\tb"},
        {fix, "a\\/ \"", "a\\\\\" \"\""},
        {fix, "", ""},
    };
    for (auto const& [operation, before, after] : s_cases)
    {
        I18NString text(before);
        operation(text);
        EXPECT_STREQ(after, text.c_str());
    }
}

TEST_F(ARXHelperTest, ReadsBasePaths)
{
    m_recorder.m_settings = {{"gatewayUrl", "http://gate/x"}, {"externalDispatcherUrl", "http://disp/x"}};
    for (auto* const get : {ARXHelper::getGatewayBasePath, ARXHelper::getBasePath})
    {
        I18NString path("before");
        get(path, false);
        EXPECT_STREQ("http://gate/x", path.c_str());
        get(path, true);
        EXPECT_STREQ("http://gate/", path.c_str());
    }
    I18NString path("before");
    ARXHelper::getExternalDispatcherBasePath(path);
    EXPECT_STREQ("http://disp/x", path.c_str());
}
