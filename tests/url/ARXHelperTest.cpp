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

TEST_F(ARXHelperTest, EncodesAllButLettersDigitsAndSixSigns)
{
    std::tuple<std::u16string, char const*, char const*> const rows[] = {
        {u"", "", ""},
        {u"a b+\u0080\u07FF", "a+b%2b%c2%80%df%bf", "a b+%c2%80%df%bf"},
        {u"\u0800\uFFFF\U0001F600", "%e0%a0%80%ef%bf%bf%ed%a0%bd%ed%b8%80",
         "%e0%a0%80%ef%bf%bf%ed%a0%bd%ed%b8%80"}};
    for (auto const& [units, encoded, kept] : rows)
    {
        I18NString text;
        text.setTo(units.c_str(), static_cast<std::uint32_t>(2 * units.size() + 2));
        EXPECT_EQ(encoded, encode(false, text));
        EXPECT_EQ(kept, encode(true, text));
    }
    EXPECT_EQ("", encode(false, nullptr, 0u) + encode(false, "a", 1u));
    EXPECT_EQ("beforeNEBAssertError: NEB_ASSERT(input); | url/ARXHelper.cpp NEB_THROW",
              encode(false, nullptr, 2u));

    std::string const passed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789()*-._";
    std::string expected, bytes = "x";  // a long text, which equals its units at any address
    for (char16_t unit = 0; unit < 0xFFFF; ++unit)
    {
        char escape[8];
        std::snprintf(escape, sizeof escape, "%%%02x", unsigned(unit));
        std::string const kept(1, char(unit)), encoded = encode(false, &unit, 2u);
        if (unit < 0x80)
        {
            EXPECT_EQ(passed.find(kept) + 1 ? kept : unit == u' ' ? "+" : escape, encoded);
            EXPECT_EQ(kept, encode(true, &unit, 2u));
        }
        expected += encoded;
        bytes.append(reinterpret_cast<char const*>(&unit), 2);
    }
    for (std::string const& text : {bytes.substr(1), bytes})
        EXPECT_EQ(expected, encode(false, &text[text.size() % 2], text.size() / 2 * 2));
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
        {cut, "\U0001F600/\U0001F600", "\U0001F600/"},
        {fix, "/b c/d e", "\\\"b c\"\\\"d e\""},
        {fix, "a b/", "\"a b\"\\"},
        {fix, "a\\/ \"", "a\\\\\" \"\""},
        {fix, "", ""},
        {[](auto& path) { ARXHelper::getGatewayBasePath(path, false); }, "before", "http://gate/x"},
        {[](auto& path) { ARXHelper::getBasePath(path, true); }, "before", "http://gate/"},
        {ARXHelper::getExternalDispatcherBasePath, "before", "http://disp/x"}};
    for (auto const& [operation, before, after] : rows)
    {
        I18NString text(before);
        operation(text);
        EXPECT_STREQ(after, text.c_str());
    }
}
