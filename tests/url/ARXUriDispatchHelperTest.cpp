#include "url/ARXUriDispatchHelper.h"

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleFactoryWorkerI.h"
#include "crypto/ARXKRYHandleI.h"
#include "support/CryptoRecorder.h"

namespace
{
struct ARXUriDispatchHelperTest : StartedTest
{
    ARXUriDispatchHelperTest()
    {
        m_recorder.m_settings = {
            {"gatewayUrl", "ga/te"}, {"externalDispatcherUrl", "disp"}, {"dispatcherID", "d 1"}};
    }

    // The first line that is raised. A url that held "base" must hold it still.
    std::string raisedFor(char const* path, char const* sessionId)
    {
        std::string url = "base";
        Lines const raised =
            raisedBy([&] { ARXUriDispatchHelper::generateByteServingUrlFromBasePath(path, sessionId, url); });
        EXPECT_EQ("base", url);
        return raised.at(0);
    }
};

// Signatures are Web64 of what is signed in angle brackets.
char const s_query[] = "?b_action=dc&f=ZmlsZQ&k=PGZpbGU-&s=PGZpbGUvaWQ-&did=d 1";

TEST_F(ARXUriDispatchHelperTest, SignsWithTwoHandlesOnOneSession)
{
    std::string url = "base";
    ARXUriDispatchHelper::generateByteServingUrlFromBasePath("/srv\\file", "/id", url);
    EXPECT_EQ(std::string("base") + s_query, url);
    EXPECT_EQ((Lines{"KRY_PersistentInitialize <sessionConfigDocument><serviceID>TALM</serviceID>"
                     "</sessionConfigDocument>",
                     "KRY_SetInfo S1 <setInfoDocument><action>CSKHMAC</action>"
                     "<dataLocation>memory</dataLocation></setInfoDocument>",
                     "KRY_ProtectData S1 file", "KRY_CryptoFree data", "KRY_ProtectData S1 file/id",
                     "KRY_CryptoFree data", "configuration dispatcherID"}),
              m_recorder.takeCalls());
}

TEST_F(ARXUriDispatchHelperTest, BeginsWithTheBasePathAskedFor)
{
    std::string url = "before";
    ARXUriDispatchHelper::genGatewayUrlForFile("file", url, "/id", true);
    EXPECT_EQ(std::string("ga/te") + s_query, url);
    ARXUriDispatchHelper::genUrlForFile("file", url, "/id", true);
    EXPECT_EQ(std::string("ga/te") + s_query, url);
    ARXUriDispatchHelper::genExternalDispatcherUrlForFile("file", url, "/id", true);
    EXPECT_EQ(std::string("disp") + s_query, url);
    ARXUriDispatchHelper::genExternalDispatcherUrlForFile("file", url, "/id", false);
    EXPECT_EQ(s_query, url);
}

TEST_F(ARXUriDispatchHelperTest, SignsANameOfAnyBytes)
{
    std::string url;
    ARXUriDispatchHelper::genUrlForFile(std::string("a\0?", 3), url, "", false);
    EXPECT_EQ("?b_action=dc&f=YQA_&k=PGEAPz4&s=PGEAPz4&did=d 1", url);
}

TEST_F(ARXUriDispatchHelperTest, RefusesAnEmptyName)
{
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(size && data);", raisedFor("/srv/", "/id"));
}

TEST_F(ARXUriDispatchHelperTest, RefusesANullSessionAfterTheFirstSignature)
{
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(base64SessionID);", raisedFor("file", nullptr));
    EXPECT_EQ("KRY_ProtectData S1 file", m_recorder.takeCalls().at(2));
}

TEST_F(ARXUriDispatchHelperTest, NoticesARefusedSignature)
{
    for (int const call : {1, 2})
    {
        m_recorder.failCall("KRY_ProtectData", call, Fault::Status);
        EXPECT_EQ("NEBAssertError: NEB_ASSERT(KRY_SUCCEEDED(status));", raisedFor("file", "/id")) << call;
    }
}

TEST_F(ARXUriDispatchHelperTest, NoticesAFactoryWithoutHandles)
{
    struct NoHandles final : ARXKRYHandleFactoryWorkerI
    {
        ARXSimpleKRYHandleI* createHandle(char const*, char const*) override { return nullptr; }
        ARXKRYHandleI* createHandle() override { return nullptr; }
        void destroyHandle(ARXSimpleKRYHandleI*) override {}
    } noHandles;
    ARXKRYHandleFactory::setFactoryWorker(&noHandles);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(handle.get());", raisedFor("file", "/id"));
}
}  // namespace
