#include "url/ARXUriDispatchHelper.h"

#include <thread>
#include <tuple>

#include "NEBCore/NEBWeb64.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleFactoryWorkerI.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
class ARXUriDispatchHelperTest : public RecordedTest
{
protected:
    ARXUriDispatchHelperTest()
    {
        m_recorder.m_settings = {
            {"gatewayUrl", "gate/x"}, {"externalDispatcherUrl", "disp/x"}, {"dispatcherID", "d 1"}};
        Arxium::initialize(false);
    }
    ~ARXUriDispatchHelperTest() override { Arxium::terminate(); }
};

std::string web64(std::string const& bytes)
{
    std::string text(NEBWeb64EncodedSize(bytes.size(), 0), '\0');
    NEBWeb64Encode(bytes.data(), bytes.size(), text.data(), 0);
    text.pop_back();
    return text;
}

// By the doubles' digest, which is the signed bytes in angle brackets.
std::string query(std::string const& name, std::string const& sessionId,
                  std::string const& dispatcher = "d 1")
{
    return "?b_action=dc&f=" + web64(name) + "&k=" + web64("<" + name + ">") +
           "&s=" + web64("<" + name + sessionId + ">") + "&did=" + dispatcher;
}

std::string generate(std::string const& path, char const* sessionId, std::string url = "")
{
    ARXUriDispatchHelper::generateByteServingUrlFromBasePath(path, sessionId, url);
    return url;
}
}  // namespace

TEST_F(ARXUriDispatchHelperTest, NamesAndSignsTheLastComponent)
{
    std::string const zeroInside("a\0b", 3), longName(1000, 'n');
    std::tuple<std::string, char const*, std::string> const s_cases[] = {
        {"report.pdf", "c2Vz", query("report.pdf", "c2Vz")},
        {"/srv/files/report.pdf", "c2Vz", query("report.pdf", "c2Vz")},
        {"C:\\files\\report.pdf", "", query("report.pdf", "")},
        {"/" + zeroInside, "c2Vz", query(zeroInside, "c2Vz")},
        {longName, "c2Vz", query(longName, "c2Vz")},
    };
    for (auto const& [path, sessionId, expected] : s_cases)
        EXPECT_EQ("base" + expected, generate(path, sessionId, "base"));
    m_recorder.m_settings.clear();
    EXPECT_EQ(query("a", "s", ""), generate("a", "s"));
}

TEST_F(ARXUriDispatchHelperTest, SignsTwiceOnOneSessionAndReadsTheConfigurationLast)
{
    generate("/srv/file", "id");
    EXPECT_EQ(
        "PersistentInitialize <sessionConfigDocument><serviceID>TALM</serviceID></sessionConfigDocument>, "
        "SetInfo S1 "
        "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>, "
        "ProtectData S1 file, Free data, ProtectData S1 fileid, Free data, configuration dispatcherID",
        m_recorder.takeStory());
}

TEST_F(ARXUriDispatchHelperTest, ReplacesTheUrlBehindTheBasePathAskedFor)
{
    std::pair<void (*)(std::string const&, std::string&, char const*, bool), std::string> const s_cases[] = {
        {ARXUriDispatchHelper::genGatewayUrlForFile, "gate/x"},
        {ARXUriDispatchHelper::genUrlForFile, "gate/x"},
        {ARXUriDispatchHelper::genExternalDispatcherUrlForFile, "disp/x"},
    };
    for (auto const& [operation, base] : s_cases)
        for (bool const withBase : {true, false})
        {
            std::string url = "before";
            std::string const start = withBase ? base : "";
            operation("/srv/file", url, "id", withBase);
            EXPECT_EQ(start + query("file", "id"), url);
            EXPECT_THROW(operation("/srv/file", url, nullptr, withBase), NEBThrowable);
            EXPECT_EQ(start, url);
        }
}

TEST_F(ARXUriDispatchHelperTest, AFailureLeavesTheUrlAndIsToldByItsText)
{
    std::tuple<char const*, char const*, Fault, std::string, char const*> const s_cases[] = {
        {"/srv/", "id", Fault::None, "size && data", ""},
        {"", "id", Fault::None, "size && data", ""},
        {"file", nullptr, Fault::None, "base64SessionID", "ProtectData S1 file, Free data"},
        {"file", "id", Fault::Status, "KRY_SUCCEEDED(status)", "ProtectData S1 file, Free data"},
    };
    generate("file", "id");
    for (auto const& [path, sessionId, fault, condition, story] : s_cases)
    {
        m_recorder.takeCalls();
        m_recorder.failCall("KRY_ProtectData", 1, fault);
        std::string url = "before";
        auto const call = [&url, path = path, sessionId = sessionId]
        { ARXUriDispatchHelper::generateByteServingUrlFromBasePath(path, sessionId, url); };
        EXPECT_EQ("NEBAssertError: NEB_ASSERT(" + condition + "); | url/ARXUriDispatchHelper.cpp NEB_THROW",
                  joined(raisedBy(call)));
        EXPECT_EQ("before", url);
        EXPECT_EQ(story, m_recorder.takeStory());
    }
}

TEST_F(ARXUriDispatchHelperTest, RefusesAFactoryThatGivesNoHandle)
{
    class NoHandles final : public ARXKRYHandleFactoryWorkerI
    {
        ARXSimpleKRYHandleI* createHandle(char const*, char const*) override { return nullptr; }
        ARXKRYHandleI* createHandle() override { return nullptr; }
        void destroyHandle(ARXSimpleKRYHandleI*) override {}
    } noHandles;
    ARXKRYHandleFactory::setFactoryWorker(&noHandles);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(handle.get());", raisedBy([] { generate("file", "id"); }).at(0));
}

TEST_F(ARXUriDispatchHelperTest, EveryFailingCryptoCallIsSurvivedAndLosesNothing)
{
    auto const story = []
    {
        struct Running
        {
            Running() { Arxium::initialize(); }
            ~Running() { Arxium::terminate(); }
        } const running;
        ARXKRYHandleI* const own = ARXKRYHandleFactory::createHandle();
        ARXSimpleKRYHandleIPtr const guard(own);
        own->persistentInitialize("cnfg", nullptr);
        own->setInfo("info", nullptr);
        generate("file", "id");
        own->persistentInitialize("again", nullptr);
    };
    Arxium::terminate();
    int points = 0;
    for (char const* function :
         {"KRY_CryptoInitialize", "KRY_PersistentInitialize", "KRY_SetInfo", "KRY_ProtectData",
          "KRY_CloseHandle", "KRY_CryptoFree", "KRY_CryptoTerminate"})
        for (Fault const fault : {Fault::Details, Fault::Status, Fault::NullSession, Fault::Exception})
            for (char const* second : {"none", "KRY_CryptoFree", "KRY_CryptoGetLastErrorDetails"})
                for (int call = 1; call == 1 || m_recorder.hasFailed(function); ++call, ++points)
                {
                    m_recorder.reset();
                    m_recorder.failCall(second, 1, Fault::Exception);
                    m_recorder.failCall(function, call, fault);
                    raisedBy(story);
                    EXPECT_EQ(Lines(), m_recorder.problems()) << function << call << second;
                }
    EXPECT_LT(200, points);
    Arxium::initialize(false);
}

TEST_F(ARXUriDispatchHelperTest, ManyThreadsMakeTheUrlsOfOne)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back(
            [name = std::to_string(thread)]
            {
                for (int i = 0; i < 50; ++i)
                    EXPECT_EQ(query(name, std::to_string(i)),
                              generate("/srv/" + name, std::to_string(i).c_str()));
            });
    for (std::thread& thread : threads)
        thread.join();
}
