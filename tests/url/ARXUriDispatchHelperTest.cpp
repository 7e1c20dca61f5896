#include "url/ARXUriDispatchHelper.h"

#include <tuple>

#include "NEBCore/NEBWeb64.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleFactoryWorkerI.h"
#include "crypto/ARXKRYHandleI.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"
#include "support/Threads.h"

namespace
{
struct ARXUriDispatchHelperTest : RecordedTest
{
    ARXUriDispatchHelperTest()
    {
        m_recorder.m_settings = {
            {"gatewayUrl", "gate"}, {"externalDispatcherUrl", "disp"}, {"dispatcherID", "d 1"}};
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

// What stands behind "base", and what was raised.
std::string generate(std::string const& path, char const* sessionId)
{
    std::string url = "base";
    Lines const raised =
        raisedBy([&] { ARXUriDispatchHelper::generateByteServingUrlFromBasePath(path, sessionId, url); });
    EXPECT_EQ(0u, url.find("base"));
    return url.substr(4) + joined(raised);
}
}  // namespace

TEST_F(ARXUriDispatchHelperTest, NamesAndSignsTheLastComponent)
{
    std::string const zeroInside("a\0b", 3), longName(1000, 'n');
    std::tuple<std::string, std::string, char const*> const rows[] = {
        {"", "report.pdf", "c2Vz"},
        {"/srv/files/", "report.pdf", "c2Vz"},
        {"C:\\files\\", "report.pdf", ""},
        {"/", zeroInside, "c2Vz"},
        {"", longName, "c2Vz"},
    };
    for (auto const& [folder, name, sessionId] : rows)
        EXPECT_EQ(query(name, sessionId), generate(folder + name, sessionId));
    onThreads(8,
              [](int thread)
              {
                  for (int i = 0; i < 50; ++i)
                      EXPECT_EQ(query(std::to_string(thread), std::to_string(i)),
                                generate(std::to_string(thread), std::to_string(i).c_str()));
              });
}

TEST_F(ARXUriDispatchHelperTest, ReplacesTheUrlBehindTheBasePathAskedFor)
{
    std::pair<void (*)(std::string const&, std::string&, char const*, bool), std::string> const rows[] = {
        {ARXUriDispatchHelper::genGatewayUrlForFile, "gate"},
        {ARXUriDispatchHelper::genUrlForFile, "gate"},
        {ARXUriDispatchHelper::genExternalDispatcherUrlForFile, "disp"},
    };
    for (auto const& [operation, base] : rows)
        for (bool const withBase : {true, false})
            for (char const* const sessionId : {"id", static_cast<char const*>(nullptr)})
            {
                std::string url = "before";
                raisedBy([&, &make = operation] { make("/srv/file", url, sessionId, withBase); });
                EXPECT_EQ((withBase ? base : "") + (sessionId ? query("file", "id") : ""), url);
            }
}

TEST_F(ARXUriDispatchHelperTest, CallsTheInterfaceInOrderAndAFailureLeavesTheUrl)
{
    std::string const setUp =
        "PersistentInitialize <sessionConfigDocument><serviceID>TALM</serviceID></sessionConfigDocument>, "
        "SetInfo S1 "
        "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>, ";
    std::string const name = "ProtectData S1 file, Free data",
                      both = name + ", ProtectData S1 fileid, Free data";
    struct NoHandles final : ARXKRYHandleFactoryWorkerI
    {
        ARXSimpleKRYHandleI* createHandle(char const*, char const*) override { return nullptr; }
        ARXKRYHandleI* createHandle() override { return nullptr; }
        void destroyHandle(ARXSimpleKRYHandleI*) override {}
    } noHandles;
    std::tuple<char const*, char const*, int, std::string, std::string> const rows[] = {
        {"/srv/file", "id", 0, "", setUp + both + ", configuration dispatcherID"},
        {"/srv/", "id", 0, "size && data", ""},
        {"", "id", 0, "size && data", ""},
        {"file", nullptr, 0, "base64SessionID", name},
        {"file", "id", 1, "KRY_SUCCEEDED(status)", name},
        {"file", "id", 2, "KRY_SUCCEEDED(status)", both},
        {"file", "id", 3, "handle.get()", ""},
    };
    for (auto const& [path, sessionId, call, condition, story] : rows)
    {
        m_recorder.failCall("KRY_ProtectData", call, Fault::Status);
        if (call == 3)
            ARXKRYHandleFactory::setFactoryWorker(&noHandles);
        EXPECT_EQ(condition.empty() ? query("file", "id")
                                    : "NEBAssertError: NEB_ASSERT(" + condition +
                                          "); | url/ARXUriDispatchHelper.cpp NEB_THROW",
                  generate(path, sessionId));
        EXPECT_EQ(story, m_recorder.takeStory());
    }
}
