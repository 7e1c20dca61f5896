#include "url/ARXHelper.h"

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "support/CryptoRecorder.h"

namespace
{
// What urlEncode makes of the input, in place of a text before.
template <class... Input>
std::string encoded(bool keepAscii, Input const&... input)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    ARXHelper::urlEncode(input..., output, keepAscii);
    return {output.str(), output.pcount()};
}

std::string encodedUnits(std::u16string const& units)
{
    return encoded(false, units.data(), 2 * units.size());
}

TEST(ARXHelperEncoding, PassesLettersDigitsAndSixSigns)
{
    EXPECT_EQ("AZaz09()*-._", encodedUnits(u"AZaz09()*-._"));
    EXPECT_EQ("%40%5b%60%7b%2f%3a", encodedUnits(u"@[`{/:"));
    EXPECT_EQ("+%2b%25%7e%0d%7f", encodedUnits(u" +%~\r\x7F"));
    EXPECT_EQ(" +%~\r\x7F%c2%80", encoded(true, I18NString(" +%~\r\x7F\xC2\x80")));
}

TEST(ARXHelperEncoding, EscapesTheUtf8OfEachUnit)
{
    EXPECT_EQ("%c2%80%df%bf", encodedUnits(u"\u0080\u07FF"));
    EXPECT_EQ("%e0%a0%80%ef%bf%bf", encodedUnits(u"\u0800\uFFFF"));
    EXPECT_EQ("%ed%a0%bd%ed%b8%80", encodedUnits(u"\U0001F600"));  // each surrogate on its own
}

TEST(ARXHelperEncoding, IgnoresAnOddLastByte)
{
    EXPECT_EQ("", encoded(false, "a", 1u));
    EXPECT_EQ("", encoded(false, nullptr, 0u));
    EXPECT_EQ("", encoded(false, I18NString()));
}

TEST(ARXHelperEncoding, OfALongTextAtAnOddAddressIsThatOfItsUnits)
{
    std::string bytes = "x", expected;
    for (char16_t unit = 0; unit < 0x1000; ++unit)
    {
        bytes.append(reinterpret_cast<char const*>(&unit), sizeof unit);
        expected += encodedUnits(std::u16string(1, unit));
    }
    EXPECT_EQ(expected, encoded(false, &bytes[1], bytes.size() - 1));
}

TEST(ARXHelperEncoding, OfNullLeavesTheOutput)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    Lines const raised = raisedBy([&] { ARXHelper::urlEncode(nullptr, 2, output, false); });
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(input);", raised.at(0));
    EXPECT_EQ(6u, output.pcount());
}

// What an operation makes of a text.
template <class Operation>
std::string after(Operation const& operation, char const* before)
{
    I18NString text(before);
    operation(text);
    return text.c_str();
}

TEST(ARXHelperUrl, LosesWhatFollowsTheLastSlash)
{
    EXPECT_EQ("a/b/", after(ARXHelper::removeLastComponentFromUrl, "a/b/c"));
    EXPECT_EQ("a/b/", after(ARXHelper::removeLastComponentFromUrl, "a/b/"));
    EXPECT_EQ("/abc", after(ARXHelper::removeLastComponentFromUrl, "/abc"));
    EXPECT_EQ("\U0001F600/", after(ARXHelper::removeLastComponentFromUrl, "\U0001F600/\U0001F600"));
}

TEST(ARXHelperCommandPath, HasQuotesAroundBlanksOnly)
{
    EXPECT_EQ(R"(\"b c"\"d e")", after(ARXHelper::fixCommandPath, "/b c/d e"));
    EXPECT_EQ(R"("a b"\)", after(ARXHelper::fixCommandPath, "a b/"));
    EXPECT_EQ(R"(a\\" "")", after(ARXHelper::fixCommandPath, "a\\/ \""));
    EXPECT_EQ("", after(ARXHelper::fixCommandPath, ""));
}

using ARXHelperBasePath = RecordedTest;

TEST_F(ARXHelperBasePath, ComesFromItsSetting)
{
    m_recorder.m_settings = {{"gatewayUrl", "http://gate/x"}, {"externalDispatcherUrl", "http://disp/x"}};
    EXPECT_EQ("http://gate/x",
              after([](auto& path) { ARXHelper::getGatewayBasePath(path, false); }, "before"));
    EXPECT_EQ("http://gate/", after([](auto& path) { ARXHelper::getBasePath(path, true); }, "before"));
    EXPECT_EQ("http://disp/x", after(ARXHelper::getExternalDispatcherBasePath, "before"));
}
}  // namespace
