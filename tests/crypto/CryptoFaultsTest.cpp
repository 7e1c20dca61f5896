// Everything that calls the crypto interface, with each of its ten functions failing at each call in each
// way.

#include <cstdio>
#include <thread>
#include <utility>
#include <vector>

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"
#include "url/ARXUriDispatchHelper.h"

namespace
{
using CryptoFaultsTest = RecordedTest;

void useHandle(ARXSimpleKRYHandleI& handle)
{
    for (auto const transfer : {&ARXSimpleKRYHandleI::protectData, &ARXSimpleKRYHandleI::unprotectData})
    {
        char* data = nullptr;
        std::size_t size = 0;
        Lines const raised = raisedBy([&] { (handle.*transfer)("data", 4, &data, &size, nullptr); });
        handle.cryptoFree(data, nullptr);
        EXPECT_TRUE(raised.empty() || raised[0] == "raised");
    }
    char word[] = "word";
    handle.getInfo(word, nullptr, nullptr);
}

void useOwnHandle()
{
    ARXKRYHandleI* const handle = ARXKRYHandleFactory::createHandle();
    ARXSimpleKRYHandleIPtr const guard(handle);
    handle->persistentInitialize("cnfg", nullptr);
    handle->setInfo("info", nullptr);
    useHandle(*handle);
    handle->persistentInitialize("cnfg", nullptr);
}

void useStream()
{
    ARXOJDSecureFileOutputStream stream;
    stream.setSecureType(ARXOJDSecureFileOutputStream::secureTypeEncrypted);
    stream.open("name");
    stream.write("data", 4);
    stream.close();
}

void useUrl()
{
    std::string url = "before";
    try
    {
        ARXUriDispatchHelper::generateByteServingUrlFromBasePath("name", "session", url);
    }
    catch (...)
    {
        EXPECT_EQ("before", url);
        throw;
    }
}

// What each step raised, without the places. A step that fails doesn't keep the next one from its turn.
Lines useEverything()
{
    void (*const steps[])() = {
        [] { Arxium::initialize(); },
        [] { useHandle(*ARXSimpleKRYHandleIPtr(ARXKRYHandleFactory::createHandle("cnfg", "info"))); },
        useOwnHandle,
        useStream,
        useUrl,
        [] { ARXSimpleKRYHandleIPtr(ARXKRYHandleFactory::createHandle("cnfg", "other")); },
        [] { Arxium::terminate(); }};
    Lines results;
    for (auto* const step : steps)
    {
        Lines const raised = raisedBy(step);
        results.push_back(raised.empty() ? "" : raised[0]);
    }
    return results;
}

std::pair<char const*, int> const s_functions[] = {  // with the least number of calls that a run makes
    {"KRY_CryptoInitialize", 1}, {"KRY_PersistentInitialize", 6},
    {"KRY_SetInfo", 6},          {"KRY_GetInfo", 2},
    {"KRY_ProtectData", 6},      {"KRY_UnprotectData", 2},
    {"KRY_CryptoFree", 6},       {"KRY_CloseHandle", 6},
    {"KRY_CryptoTerminate", 1},  {"KRY_CryptoGetLastErrorDetails", 1}};

std::vector<Fault> faultsOf(std::string const& function)
{
    std::vector<Fault> faults{Fault::Details, Fault::Status, Fault::Exception};
    if (function == "KRY_PersistentInitialize")
        faults.push_back(Fault::NullSession);
    return faults;
}
}  // namespace

TEST_F(CryptoFaultsTest, NoFaultAtAnyCallLosesAnythingOrLeavesALockBehind)
{
    int points = 0;
    for (auto const& [function, calls] : s_functions)
        for (Fault const fault : faultsOf(function))
            for (int call = 1;; ++call)
            {
                SCOPED_TRACE(std::string(function) + " " + std::to_string(call));
                m_recorder.reset();
                if (function == std::string("KRY_CryptoGetLastErrorDetails"))  // asked for only then
                    m_recorder.failCall("KRY_SetInfo", 1, Fault::Status);
                m_recorder.failCall(function, call, fault);
                for (std::string const& raised : useEverything())
                    EXPECT_TRUE(raised.empty() || raised == "raised" ||
                                raised.rfind("ARXException: ", 0) == 0 ||
                                raised.rfind("NEBAssertError: ", 0) == 0)
                        << raised;
                if (!m_recorder.hasFailed(function))
                {
                    EXPECT_GT(call, calls);
                    break;
                }
                // On another thread, which a lock that is still held would stop.
                std::thread([] { EXPECT_EQ(Lines(7), useEverything()); }).join();
                EXPECT_EQ(Lines(), m_recorder.problems());
                ++points;
            }
    std::printf("%d points\n", points);
    EXPECT_LE(110, points);
}
