// Everything that calls the crypto interface, from many threads, and with each of its ten functions failing
// at each call in each way.

#include <algorithm>
#include <cstdio>
#include <set>

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "support/CryptoRecorder.h"
#include "support/Threads.h"
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
        raisedBy([&] { (handle.*transfer)("data", 4, &data, &size, nullptr); });
        handle.cryptoFree(data, nullptr);
    }
    handle.getInfo(nullptr, nullptr, nullptr);
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
    std::string url;
    ARXUriDispatchHelper::generateByteServingUrlFromBasePath("name", "session", url);
}

// What each step raised. A step that fails doesn't keep the next one from its turn.
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
        results.push_back(joined(raisedBy(step)));
    return results;
}

}  // namespace

TEST_F(CryptoFaultsTest, NoFaultAtAnyCallLosesAnything)
{
    std::pair<std::string, int> const functions[] = {
        // with the least number of calls that a run makes
        {"CryptoInitialize", 1}, {"PersistentInitialize", 6},
        {"SetInfo", 6},          {"GetInfo", 2},
        {"ProtectData", 6},      {"UnprotectData", 2},
        {"CryptoFree", 6},       {"CloseHandle", 6},
        {"CryptoTerminate", 1},  {"CryptoGetLastErrorDetails", 1}};
    int points = 0;
    for (auto const& [name, calls] : functions)
        for (Fault const fault : {Fault::Details, Fault::Status, Fault::NullSession, Fault::Exception})
            for (int const second : {0, 1})  // a call of KRY_CryptoFree that fails as well
                for (int call = 1;; ++call)
                {
                    if (fault == Fault::NullSession && name != "PersistentInitialize")
                        break;
                    std::string const function = "KRY_" + name;
                    SCOPED_TRACE(function + " " + std::to_string(call));
                    m_recorder.reset();
                    m_recorder.failCall("KRY_CryptoFree", second, Fault::Exception);
                    if (name == "CryptoGetLastErrorDetails")  // asked for only then
                        m_recorder.failCall("KRY_SetInfo", 1, Fault::Status);
                    m_recorder.failCall(function, call, fault);
                    std::set<std::string> const kinds = {"", "raised", "ARXException", "NEBAssertError"};
                    for (std::string const& raised : useEverything())
                        EXPECT_EQ(1u, kinds.count(raised.substr(0, raised.find(':')))) << raised;
                    if (!m_recorder.hasFailed(function))
                    {
                        EXPECT_GT(call, calls - 3 * second);
                        break;
                    }
                    m_recorder.m_faults.clear();
                    // On another thread, which a lock that is still held would stop.
                    std::thread([] { EXPECT_EQ(Lines(7), useEverything()); }).join();
                    EXPECT_EQ(Lines(), m_recorder.problems());
                    ++points;
                }
    std::printf("%d points\n", points);
    EXPECT_LE(200, points);
}

TEST_F(CryptoFaultsTest, CallsOfManyThreadsNeverMeetOnASession)
{
    Arxium::initialize(false);
    auto const work = [](int)
    {
        for (int i = 0; i < 400; ++i)
            useHandle(*ARXSimpleKRYHandleIPtr(
                ARXKRYHandleFactory::createHandle("cnfg", std::to_string(i).c_str())));
    };
    onThreads(8, work);
    Lines const calls = m_recorder.takeCalls();
    EXPECT_EQ(400, std::count(calls.begin(), calls.end(), "KRY_PersistentInitialize cnfg"));
    Arxium::terminate();
}
