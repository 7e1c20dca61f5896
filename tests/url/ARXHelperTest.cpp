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

TEST(ARXHelperEncoding, EscapesTheUtf8OfEachUnit)
{
    EXPECT_EQ("AZaz09()*-._+%2b%25%7e%0d%7f", encodedUnits(u"AZaz09()*-._ +%~\r\x7F"));
    EXPECT_EQ("%df%bf%e0%a0%80", encodedUnits(u"\u07FF\u0800"));
    EXPECT_EQ("%ed%a0%bd%ed%b8%80", encodedUnits(u"\U0001F600"));  // each surrogate on its own
    EXPECT_EQ(" +%~\r\x7F%c2%80", encoded(true, I18NString(" +%~\r\x7F\xC2\x80")));
}

TEST(ARXHelperEncoding, IgnoresAnOddLastByte)
{
    EXPECT_EQ("", encoded(false, "a", 1u));
    EXPECT_EQ("", encoded(false, nullptr, 0u));
    EXPECT_EQ("", encoded(false, I18NString()));
}

TEST(ARXHelperEncoding, OfNullLeavesTheOutput)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    Lines const raised = raisedBy([&] { ARXHelper::urlEncode(nullptr, 2, output, false); });
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(input);", raised.at(0));
    EXPECT_EQ(6u, output.pcount());
}

TEST(ARXHelperCommandPath, HasQuotesAroundBlanksOnly)
{
    I18NString path("/b c/\"d\\e f");
    ARXHelper::fixCommandPath(path);
    EXPECT_STREQ(R"(\"b c"\"d\"e f")", path.c_str());
}

using ARXHelperBasePath = RecordedTest;

TEST_F(ARXHelperBasePath, LosesWhatFollowsItsLastSlash)
{
    m_recorder.m_settings["gatewayUrl"] = "http://gate/x";
    I18NString path("before");
    ARXHelper::getBasePath(path, true);
    EXPECT_STREQ("http://gate/", path.c_str());
}
}  // namespace
