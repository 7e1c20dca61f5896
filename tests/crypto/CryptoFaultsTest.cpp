// Everything that calls the crypto interface, with each of its ten functions failing at each call in each
// way.

#include <cstdio>
#include <set>
#include <thread>

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "support/CryptoRecorder.h"
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
    std::string const functions[] = {"CryptoInitialize", "PersistentInitialize",
                                     "SetInfo",          "GetInfo",
                                     "ProtectData",      "UnprotectData",
                                     "CryptoFree",       "CloseHandle",
                                     "CryptoTerminate",  "CryptoGetLastErrorDetails"};
    int points = 0;
    for (std::string const& name : functions)
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
                        break;
                    m_recorder.m_faults.clear();
                    // On another thread, which a lock that is still held would stop.
                    std::thread([] { EXPECT_EQ(Lines(7), useEverything()); }).join();
                    EXPECT_EQ(Lines(), m_recorder.problems());
                    ++points;
                }
    std::printf("%d points\n", points);
    EXPECT_LE(200, points);
}
