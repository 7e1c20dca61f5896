#include "crypto/ARXKRYHandle.h"

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/NEBThreadGuard.h"
#include "crypto/ARXSimpleKRYHandle.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
class ARXKRYHandleTest : public RecordedTest
{
};

// Opens, sets up, opens again.
void runTwice(ARXKRYHandle& handle)
{
    handle.persistentInitialize("one", nullptr);
    handle.setInfo("info", nullptr);
    handle.persistentInitialize("two", nullptr);
}

Lines error(char const* message, char const* file, std::string const& operation)
{
    return {std::string("ARXException: ") + message, std::string(file) + " NEB_THROW " + operation};
}

Lines error(char const* message, std::string const& operation)
{
    return error(message, "crypto/ARXKRYHandle.cpp", "ARXKRYHandle::" + operation);
}
}  // namespace

TEST_F(ARXKRYHandleTest, EachFailureIsToldWithItsDetailsAndFreesThem)
{
    Lines const setUp{"KRY_PersistentInitialize one", "KRY_SetInfo S1 info"};
    std::string const open = "persistentInitialize - Error in KRY_PersistentInitialize";
    std::string const set = "setInfo - Error in KRY_SetInfo";
    std::string const close = "closeHandle - Error in KRY_CloseHandle";
    std::string const free = "KRY_CryptoFree details";
    std::string const ask = "KRY_CryptoGetLastErrorDetails S1";
    struct
    {
        char const* m_function;
        int m_call;
        Fault m_fault;
        Lines m_raised;
        Lines m_calls;
    } const s_cases[] = {
        {"none",
         0,
         Fault::None,
         {},
         {setUp[0], setUp[1], "KRY_CloseHandle S1", "KRY_PersistentInitialize two", "KRY_CloseHandle S2"}},
        {"KRY_PersistentInitialize", 1, Fault::Details, error("reason", open), {setUp[0], free}},
        {"KRY_PersistentInitialize", 1, Fault::Status, error("", open), {setUp[0]}},
        {"KRY_PersistentInitialize", 1, Fault::Exception, {"raised"}, {setUp[0], free}},
        {"KRY_PersistentInitialize",
         2,
         Fault::Details,
         error("reason", open),
         {setUp[0], setUp[1], "KRY_CloseHandle S1", "KRY_PersistentInitialize two", free}},
        {"KRY_SetInfo",
         1,
         Fault::Status,
         error("reason", set),
         {setUp[0], setUp[1], ask, free, "KRY_CloseHandle S1"}},
        {"KRY_CloseHandle",
         1,
         Fault::Details,
         error("reason", close),
         {setUp[0], setUp[1], "KRY_CloseHandle S1", free, "KRY_CloseHandle S1"}},
        {"KRY_CloseHandle",
         1,
         Fault::Status,
         error("", close),
         {setUp[0], setUp[1], "KRY_CloseHandle S1", "KRY_CloseHandle S1"}},
        {"KRY_CloseHandle",
         1,
         Fault::Exception,
         {"raised"},
         {setUp[0], setUp[1], "KRY_CloseHandle S1", free, "KRY_CloseHandle S1"}},
        {"KRY_CloseHandle",
         2,
         Fault::Details,
         {},
         {setUp[0], setUp[1], "KRY_CloseHandle S1", "KRY_PersistentInitialize two", "KRY_CloseHandle S2",
          free}},
    };
    for (auto const& failure : s_cases)
    {
        m_recorder.reset();
        m_recorder.failCall(failure.m_function, failure.m_call, failure.m_fault);
        Lines raised;
        {
            ARXKRYHandle handle;
            raised = raisedBy([&] { runTwice(handle); });
        }
        EXPECT_EQ(failure.m_raised, raised) << failure.m_function;
        EXPECT_EQ(failure.m_calls, m_recorder.takeCalls()) << failure.m_function;
        EXPECT_EQ(Lines(), m_recorder.problems()) << failure.m_function;
    }
}

TEST_F(ARXKRYHandleTest, AFailedSetUpWithoutDetailsHasNoMessage)
{
    ARXKRYHandle handle;
    m_recorder.failCall("KRY_SetInfo", 1, Fault::Status);
    m_recorder.failCall("KRY_CryptoGetLastErrorDetails", 1, Fault::Status);
    EXPECT_EQ(error("", "setInfo - Error in KRY_SetInfo"), raisedBy([&] { runTwice(handle); }));
    EXPECT_EQ("KRY_CryptoGetLastErrorDetails S1", m_recorder.takeCalls().back());
}

TEST_F(ARXKRYHandleTest, WithoutASessionNothingIsClosedAndTheInterfaceDecides)
{
    ARXKRYHandle handle;
    handle.closeHandle();
    EXPECT_TRUE(KRY_SUCCEEDED(handle.getInfo(nullptr, nullptr, nullptr)));
    EXPECT_EQ((Lines{"KRY_GetInfo null null null null"}), m_recorder.takeCalls());
}

TEST_F(ARXKRYHandleTest, BothKindsPassDataAndWriteTheSizeAlsoOnFailure)
{
    void* session = nullptr;
    ASSERT_EQ(0, KRY_PersistentInitialize(&session, "cnfg", nullptr, nullptr));
    NEBThreadCriticalSection lock(0);
    ARXSimpleKRYHandle simple(session, lock);
    ARXKRYHandle full;
    full.persistentInitialize("cnfg", nullptr);
    m_recorder.takeCalls();
    struct
    {
        ARXSimpleKRYHandleI& m_handle;
        std::string m_session;
    } const s_handles[] = {{simple, "S1"}, {full, "S2"}};
    for (auto const& [handle, name] : s_handles)
    {
        for (Fault const fault : {Fault::None, Fault::Status})
        {
            char* data = nullptr;
            std::size_t size = 0;
            m_recorder.failCall("KRY_ProtectData", 1, fault);
            EXPECT_EQ(fault == Fault::None,
                      KRY_SUCCEEDED(handle.protectData("bytes", 2, &data, &size, nullptr)));
            EXPECT_EQ("<by>", std::string(data, size));
            handle.cryptoFree(data, nullptr);

            size = 9;
            m_recorder.failCall("KRY_UnprotectData", 1, fault);
            EXPECT_EQ(fault == Fault::None,
                      KRY_SUCCEEDED(handle.unprotectData("bytes", 5, &data, &size, nullptr)));
            EXPECT_EQ("plain", std::string(data, size));
            handle.cryptoFree(data, nullptr);
            EXPECT_EQ((Lines{"KRY_ProtectData " + name + " by", "KRY_CryptoFree data",
                             "KRY_UnprotectData " + name + " bytes wanted 9", "KRY_CryptoFree data"}),
                      m_recorder.takeCalls());
        }
        char first[] = "a", second[] = "b", third[] = "c";
        m_recorder.failCall("KRY_GetInfo", 1, Fault::Status);
        EXPECT_FALSE(KRY_SUCCEEDED(handle.getInfo(first, second, third)));
        EXPECT_EQ((Lines{"KRY_GetInfo " + name + " a b c"}), m_recorder.takeCalls());
    }
    KRY_CloseHandle(&session, nullptr, nullptr);
}

TEST_F(ARXKRYHandleTest, SizesBeyond32BitsReachNoCrypto)
{
    std::size_t const tooMuch = std::size_t(UINT32_MAX) + 1;
    void* session = nullptr;
    NEBThreadCriticalSection lock(0);
    NEBThreadGuard const guard(lock);  // and no lock: this would wait for ever
    ARXSimpleKRYHandle simple(session, lock);
    ARXKRYHandle full;
    for (ARXSimpleKRYHandleI* handle :
         {static_cast<ARXSimpleKRYHandleI*>(&simple), static_cast<ARXSimpleKRYHandleI*>(&full)})
    {
        char* data = nullptr;
        std::size_t size = tooMuch;
        EXPECT_THROW(handle->protectData("", tooMuch, &data, &size, nullptr), NEBThrowable);
        EXPECT_THROW(handle->unprotectData("", 0, &data, &size, nullptr), NEBThrowable);
        EXPECT_EQ(tooMuch, size);
    }
    EXPECT_EQ(Lines(), m_recorder.takeCalls());
}
