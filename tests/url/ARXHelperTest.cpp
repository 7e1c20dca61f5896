#include "url/ARXHelper.h"

#include <cstdio>
#include <tuple>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "support/CryptoRecorder.h"

namespace
{
template <class... Input>
std::string encode(bool keepAscii, Input const&... input)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    Lines const raised = raisedBy([&] { ARXHelper::urlEncode(input..., output, keepAscii); });
    return std::string(output.str(), output.pcount()) + joined(raised);
}

using ARXHelperTest = RecordedTest;
}  // namespace

TEST_F(ARXHelperTest, EncodesUnits)
{
    std::tuple<std::u16string, char const*, char const*> const rows[] = {
        {u"", "", ""},
        {u"a b+c", "a+b%2bc", "a b+c"},
        {u"\u0080\u00E9\u07FF", "%c2%80%c3%a9%df%bf", "%c2%80%c3%a9%df%bf"},
        {u"\u0800\u20AC\uFFFF", "%e0%a0%80%e2%82%ac%ef%bf%bf", "%e0%a0%80%e2%82%ac%ef%bf%bf"},
        {u"\U0001F600", "%ed%a0%bd%ed%b8%80", "%ed%a0%bd%ed%b8%80"},
    };
    for (auto const& [units, encoded, kept] : rows)
    {
        I18NString text;
        text.setTo(units.c_str(), static_cast<std::uint32_t>(2 * units.size() + 2));
        EXPECT_EQ(encoded, encode(false, text));
        EXPECT_EQ(kept, encode(true, text));
    }
    EXPECT_EQ("", encode(false, nullptr, 0u));
    EXPECT_EQ("", encode(false, "a", 1u));
    EXPECT_EQ("beforeNEBAssertError: NEB_ASSERT(input); | url/ARXHelper.cpp NEB_THROW",
              encode(false, nullptr, 2u));
}

TEST_F(ARXHelperTest, PassesLettersDigitsSixSignsAndALongTextEqualsItsUnitsAtAnyAddress)
{
    std::string const passed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789()*-._";
    std::string expected, bytes = "x";
    for (char16_t unit = 0; unit < 0xFFFF; ++unit)
    {
        char escape[8];
        std::snprintf(escape, sizeof escape, "%%%02x", unsigned(unit));
        std::string const kept(1, char(unit));
        std::string const encoded = encode(false, &unit, 2u);
        if (unit < 0x80)
        {
            EXPECT_EQ(passed.find(kept) + 1 ? kept : unit == u' ' ? "+" : escape, encoded);
            EXPECT_EQ(kept, encode(true, &unit, 2u));
        }
        expected += encoded;
        bytes.append(reinterpret_cast<char const*>(&unit), 2);
    }
    std::string const even = bytes.substr(1);
    EXPECT_EQ(expected, encode(false, even.data(), even.size()));
    EXPECT_EQ(expected, encode(false, &bytes[1], bytes.size()));
}

TEST_F(ARXHelperTest, RewritesTextsAndReadsBasePaths)
{
    m_recorder.m_settings = {{"gatewayUrl", "http://gate/x"}, {"externalDispatcherUrl", "http://disp/x"}};
    auto* const cut = ARXHelper::removeLastComponentFromUrl;
    auto* const fix = ARXHelper::fixCommandPath;
    std::tuple<void (*)(I18NString&), char const*, char const*> const rows[] = {
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
        {[](I18NString& path) { ARXHelper::getGatewayBasePath(path, false); }, "before", "http://gate/x"},
        {[](I18NString& path) { ARXHelper::getGatewayBasePath(path, true); }, "before", "http://gate/"},
        {[](I18NString& path) { ARXHelper::getBasePath(path, false); }, "before", "http://gate/x"},
        {[](I18NString& path) { ARXHelper::getBasePath(path, true); }, "before", "http://gate/"},
        {ARXHelper::getExternalDispatcherBasePath, "before", "http://disp/x"},
    };
    for (auto const& [operation, before, after] : rows)
    {
        I18NString text(before);
        operation(text);
        EXPECT_STREQ(after, text.c_str());
    }
}
