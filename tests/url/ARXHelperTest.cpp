#include "url/ARXHelper.h"

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "support/CryptoRecorder.h"

namespace
{
// The rules of the encoding, of cut URLs and of command paths are compared with models on replayed inputs.
TEST(ARXHelperEncoding, TakesATextWithoutItsTerminator)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    ARXHelper::urlEncode(I18NString("\xC3\x9F +"), output, true);
    EXPECT_EQ("%c3%9f +", std::string(output.str(), output.pcount()));
    ARXHelper::urlEncode(I18NString(), output, true);
    EXPECT_EQ(0u, output.pcount());
}

TEST(ARXHelperEncoding, OfNullLeavesTheOutput)
{
    NEBByteBuffer output(256, 256);
    output << "before";
    Lines const raised = raisedBy([&] { ARXHelper::urlEncode(nullptr, 2, output, false); });
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(input);", raised.at(0));
    EXPECT_EQ(6u, output.pcount());
    ARXHelper::urlEncode(nullptr, 0, output, false);
    EXPECT_EQ(0u, output.pcount());
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
