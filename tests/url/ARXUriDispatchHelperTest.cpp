#include "url/ARXUriDispatchHelper.h"

#include <thread>

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
        m_recorder.m_settings = {{"gatewayUrl", "http://gate/x"},
                                 {"externalDispatcherUrl", "http://disp/x"},
                                 {"dispatcherID", "d 1"}};
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
    std::string const zeroInside("a\0b", 3);
    struct
    {
        std::string m_path;
        char const* m_sessionId;
        std::string m_url;
    } const s_cases[] = {
        {"report.pdf", "c2Vz", query("report.pdf", "c2Vz")},
        {"/srv/files/report.pdf", "c2Vz", query("report.pdf", "c2Vz")},
        {"C:\\files\\report.pdf", "", query("report.pdf", "")},
        {"/" + zeroInside, "c2Vz", query(zeroInside, "c2Vz")},
        {std::string(1000, 'n'), "c2Vz", query(std::string(1000, 'n'), "c2Vz")},
    };
    for (auto const& row : s_cases)
        EXPECT_EQ("base" + row.m_url, generate(row.m_path, row.m_sessionId, "base"));
    m_recorder.m_settings.clear();
    EXPECT_EQ(query("a", "s", ""), generate("a", "s"));
}

TEST_F(ARXUriDispatchHelperTest, SignsTwiceOnOneSessionAndReadsTheConfigurationLast)
{
    generate("/srv/file", "id");
    EXPECT_EQ(
        (Lines{
            "KRY_PersistentInitialize "
            "<sessionConfigDocument><serviceID>TALM</serviceID></sessionConfigDocument>",
            "KRY_SetInfo S1 "
            "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>",
            "KRY_ProtectData S1 file", "KRY_CryptoFree data", "KRY_ProtectData S1 fileid",
            "KRY_CryptoFree data", "configuration dispatcherID"}),
        m_recorder.takeCalls());
}

TEST_F(ARXUriDispatchHelperTest, ReplacesTheUrlBehindTheBasePathAskedFor)
{
    using Operation = void (*)(std::string const&, std::string&, char const*, bool);
    struct
    {
        Operation m_operation;
        bool m_withBase;
        char const* m_base;
    } const s_cases[] = {
        {ARXUriDispatchHelper::genGatewayUrlForFile, true, "http://gate/x"},
        {ARXUriDispatchHelper::genUrlForFile, true, "http://gate/x"},
        {ARXUriDispatchHelper::genExternalDispatcherUrlForFile, true, "http://disp/x"},
        {ARXUriDispatchHelper::genGatewayUrlForFile, false, ""},
        {ARXUriDispatchHelper::genUrlForFile, false, ""},
        {ARXUriDispatchHelper::genExternalDispatcherUrlForFile, false, ""},
    };
    for (auto const& row : s_cases)
    {
        std::string url = "before";
        row.m_operation("/srv/file", url, "id", row.m_withBase);
        EXPECT_EQ(row.m_base + query("file", "id"), url);
        EXPECT_EQ(2u, raisedBy([&] { row.m_operation("/srv/file", url, nullptr, row.m_withBase); }).size());
        EXPECT_EQ(row.m_base, url);
    }
}

TEST_F(ARXUriDispatchHelperTest, AFailureLeavesTheUrlAndIsToldByItsText)
{
    struct
    {
        char const* m_path;
        char const* m_sessionId;
        Fault m_fault;
        char const* m_text;
        std::size_t m_signatures;
    } const s_cases[] = {
        {"/srv/", "id", Fault::None, "size && data", 0},
        {"", "id", Fault::None, "size && data", 0},
        {"file", nullptr, Fault::None, "base64SessionID", 1},
        {"file", "id", Fault::Status, "KRY_SUCCEEDED(status)", 1},
    };
    generate("file", "id");
    for (auto const& row : s_cases)
    {
        m_recorder.takeCalls();
        m_recorder.failCall("KRY_ProtectData", 1, row.m_fault);
        std::string url = "before";
        EXPECT_EQ((Lines{std::string("NEBAssertError: NEB_ASSERT(") + row.m_text + ");",
                         "url/ARXUriDispatchHelper.cpp NEB_THROW"}),
                  raisedBy(
                      [&] {
                          ARXUriDispatchHelper::generateByteServingUrlFromBasePath(row.m_path,
                                                                                   row.m_sessionId, url);
                      }));
        EXPECT_EQ("before", url);
        EXPECT_EQ(2 * row.m_signatures, m_recorder.takeCalls().size());
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
                for (int call = 1;; ++call, ++points)
                {
                    m_recorder.reset();
                    m_recorder.failCall(second, 1, Fault::Exception);
                    m_recorder.failCall(function, call, fault);
                    raisedBy(story);
                    EXPECT_EQ(Lines(), m_recorder.problems()) << function << call << second;
                    if (!m_recorder.hasFailed(function))
                        break;
                }
    EXPECT_LT(150, points);
    Arxium::initialize(false);
}

TEST_F(ARXUriDispatchHelperTest, ManyThreadsMakeTheUrlsOfOne)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back(
            [thread]
            {
                for (int i = 0; i < 50; ++i)
                {
                    std::string const name = std::to_string(thread) + "-" + std::to_string(i);
                    EXPECT_EQ(query(name, "id"), generate("/srv/" + name, "id"));
                }
            });
    for (std::thread& thread : threads)
        thread.join();
}
