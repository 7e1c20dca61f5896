// Everything that calls the crypto interface, with each of its ten functions failing at each call in each
// way.

#include <thread>

#include <gmock/gmock.h>

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "support/CryptoRecorder.h"
#include "url/ARXUriDispatchHelper.h"

namespace
{
using testing::AnyOf;
using testing::Each;
using testing::StartsWith;

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

struct CryptoFaultsTest : RecordedTest
{
    // Lets each call of a function fail in turn, alone or with the first call of KRY_CryptoFree. Returns how
    // many there were.
    int failEachCall(std::string const& function, Fault fault, bool isAlone)
    {
        for (int call = 1;; ++call)
        {
            SCOPED_TRACE(function + " " + std::to_string(call));
            m_recorder.reset();
            if (!isAlone)
                m_recorder.failCall("KRY_CryptoFree", 1, Fault::Exception);
            if (function == "KRY_CryptoGetLastErrorDetails")  // asked for only then
                m_recorder.failCall("KRY_SetInfo", 1, Fault::Status);
            m_recorder.failCall(function, call, fault);
            EXPECT_THAT(useEverything(),
                        Each(AnyOf("", "raised", StartsWith("ARXException"), StartsWith("NEBAssertError"))));
            if (!m_recorder.hasFailed(function))
                return call - 1;
            m_recorder.m_faults.clear();
            // On another thread, which a lock that is still held would stop.
            std::thread([] { EXPECT_EQ(Lines(7), useEverything()); }).join();
            m_recorder.expectNothingLeft();
        }
    }
};
}  // namespace

TEST_F(CryptoFaultsTest, NoFaultAtAnyCallLosesAnything)
{
    int points = 0;
    for (char const* function : {"KRY_CryptoInitialize", "KRY_PersistentInitialize", "KRY_SetInfo",
                                 "KRY_GetInfo", "KRY_ProtectData", "KRY_UnprotectData", "KRY_CryptoFree",
                                 "KRY_CloseHandle", "KRY_CryptoTerminate", "KRY_CryptoGetLastErrorDetails"})
        for (Fault const fault : {Fault::Details, Fault::Status, Fault::Exception})
            for (bool const isAlone : {true, false})
                points += failEachCall(function, fault, isAlone);
    EXPECT_LE(200, points);
}

TEST_F(CryptoFaultsTest, ASessionThatIsNoneLosesNothing)
{
    EXPECT_LE(4, failEachCall("KRY_PersistentInitialize", Fault::NullSession, true));
}
