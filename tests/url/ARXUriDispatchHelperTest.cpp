#include "url/ARXUriDispatchHelper.h"

#include <tuple>

#include "NEBCore/NEBWeb64.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleFactoryWorkerI.h"
#include "crypto/ARXKRYHandleI.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"

namespace
{
struct ARXUriDispatchHelperTest : RecordedTest
{
    ARXUriDispatchHelperTest()
    {
        m_recorder.m_settings = {
            {"gatewayUrl", "ga/te"}, {"externalDispatcherUrl", "disp"}, {"dispatcherID", "d 1"}};
        Arxium::initialize(false);
    }
    ~ARXUriDispatchHelperTest() override { Arxium::terminate(); }
};

std::string web64(std::string const& bytes)
{
    std::string text(NEBWeb64EncodedSize(bytes.size(), 0), '\0');
    NEBWeb64Encode(bytes.data(), bytes.size(), text.data(), 0);
    return text.c_str();
}

// By the doubles' digest, which is the signed bytes in angle brackets.
std::string query(std::string const& name, std::string const& sessionId)
{
    return "?b_action=dc&f=" + web64(name) + "&k=" + web64("<" + name + ">") +
           "&s=" + web64("<" + name + sessionId + ">") + "&did=d 1";
}
}  // namespace

TEST_F(ARXUriDispatchHelperTest, NamesAndSignsTheLastComponentBehindTheBasePathAskedFor)
{
    std::pair<void (*)(std::string const&, std::string&, char const*, bool), std::string> const rows[] = {
        {ARXUriDispatchHelper::genGatewayUrlForFile, "ga/te"},
        {ARXUriDispatchHelper::genUrlForFile, "ga/te"},
        {ARXUriDispatchHelper::genExternalDispatcherUrlForFile, "disp"}};
    for (auto const& [operation, base] : rows)
        for (bool const withBase : {true, false})
            for (char const* const sessionId : {"id", "", static_cast<char const*>(nullptr)})
                for (std::string const& name :
                     {std::string("a.pdf"), std::string(1000, 'n'), std::string("a\0b", 3)})
                {
                    std::string url = "before", folder = withBase ? "/srv/" : "C:\\srv\\";
                    raisedBy([&, &make = operation] { make(folder + name, url, sessionId, withBase); });
                    EXPECT_EQ((withBase ? base : "") + (sessionId ? query(name, sessionId) : ""), url);
                }
}

TEST_F(ARXUriDispatchHelperTest, CallsTheInterfaceInOrderAndAFailureLeavesTheUrl)
{
    std::string const source = "url/ARXUriDispatchHelper.cpp NEB_THROW",
                      open =
                          "KRY_PersistentInitialize <sessionConfigDocument><serviceID>TALM</serviceID>"
                          "</sessionConfigDocument>",
                      setUp =
                          "KRY_SetInfo S1 <setInfoDocument><action>CSKHMAC</action>"
                          "<dataLocation>memory</dataLocation></setInfoDocument>",
                      signName = "KRY_ProtectData S1 file", signBoth = "KRY_ProtectData S1 fileid",
                      free = "KRY_CryptoFree data", readId = "configuration dispatcherID";
    struct NoHandles final : ARXKRYHandleFactoryWorkerI
    {
        ARXSimpleKRYHandleI* createHandle(char const*, char const*) override { return nullptr; }
        ARXKRYHandleI* createHandle() override { return nullptr; }
        void destroyHandle(ARXSimpleKRYHandleI*) override {}
    } noHandles;
    std::tuple<char const*, char const*, int, std::string, Lines> const rows[] = {
        {"/srv/file", "id", 0, "", {open, setUp, signName, free, signBoth, free, readId}},
        {"/srv/", "id", 0, "size && data", {}},
        {"file", nullptr, 0, "base64SessionID", {signName, free}},
        {"file", "id", 1, "KRY_SUCCEEDED(status)", {signName, free}},
        {"file", "id", 2, "KRY_SUCCEEDED(status)", {signName, free, signBoth, free}},
        {"file", "id", 3, "handle.get()", {}}};
    auto* const generate = ARXUriDispatchHelper::generateByteServingUrlFromBasePath;
    for (auto const& [path, sessionId, call, condition, calls] : rows)
    {
        m_recorder.failCall("KRY_ProtectData", call, Fault::Status);
        if (call == 3)
            ARXKRYHandleFactory::setFactoryWorker(&noHandles);
        std::string url = "base", failure = "NEBAssertError: NEB_ASSERT(" + condition + "); | " + source;
        Lines const raised = raisedBy([&, &path = path, &id = sessionId] { generate(path, id, url); });
        EXPECT_EQ(condition.empty() ? "" : failure, joined(raised));
        EXPECT_EQ(condition.empty() ? "base" + query("file", "id") : "base", url);
        EXPECT_EQ(calls, m_recorder.takeCalls());
    }
}
