#include "crypto/ARXKRYHandle.h"

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/NEBThreadGuard.h"
#include "crypto/ARXSimpleKRYHandle.h"
#include "support/CryptoRecorder.h"

namespace
{
struct ARXKRYHandleTest : RecordedTest
{
    void* m_session = nullptr;
    NEBThreadCriticalSection m_lock{0};
    ARXSimpleKRYHandle m_simple{m_session, m_lock};
    ARXKRYHandle m_full;
    ARXSimpleKRYHandleI* const m_both[2] = {&m_simple, &m_full};
};
}  // namespace

TEST_F(ARXKRYHandleTest, RaisesEachFailureWithItsDetails)
{
    std::string const openOne = "KRY_PersistentInitialize one", openTwo = "KRY_PersistentInitialize two",
                      setUp = "KRY_SetInfo S1 info", askWhy = "KRY_CryptoGetLastErrorDetails S1",
                      closeOne = "KRY_CloseHandle S1", closeTwo = "KRY_CloseHandle S2",
                      freeWhy = "KRY_CryptoFree details";
    char const open[] = "KRY_PersistentInitialize", set[] = "KRY_SetInfo", close[] = "KRY_CloseHandle";
    std::string const by = " | crypto/ARXKRYHandle.cpp NEB_THROW ARXKRYHandle::",
                      openFails =
                          "ARXException: no messages" + by + "persistentInitialize - Error in " + open,
                      setFails = "ARXException: reason" + by + "setInfo - Error in " + set,
                      closeFails = "ARXException: reason" + by + "closeHandle - Error in " + close;
    struct
    {
        char const* m_name;
        char const* m_function;  // whose call fails
        int m_call;
        Fault m_fault;
        std::string m_raised;
        Lines m_calls;
    } const rows[] = {
        {"NoFault", "", 1, Fault::None, "", {openOne, setUp, closeOne, openTwo, closeTwo}},
        {"SecondOpen", open, 2, Fault::Status, openFails, {openOne, setUp, closeOne, openTwo}},
        {"SetInfo", set, 1, Fault::Status, setFails, {openOne, setUp, askWhy, freeWhy, closeOne}},
        {"CloseByOpen", close, 1, Fault::Details, closeFails, {openOne, setUp, closeOne, freeWhy, closeOne}},
    };
    for (auto const& row : rows)
    {
        SCOPED_TRACE(row.m_name);
        m_recorder.reset();
        m_recorder.failCall(row.m_function, row.m_call, row.m_fault);
        auto const use = []
        {
            ARXKRYHandle handle;
            handle.closeHandle();
            handle.persistentInitialize("one", nullptr);
            handle.setInfo("info", nullptr);
            handle.persistentInitialize("two", nullptr);
        };
        EXPECT_EQ(row.m_raised, joined(raisedBy(use)));
        EXPECT_EQ(row.m_calls, m_recorder.takeCalls());
        m_recorder.expectNothingLeft();
    }
}

TEST_F(ARXKRYHandleTest, BothKindsReturnWhatAFailedCallMade)
{
    KRY_PersistentInitialize(&m_session, "cnfg", nullptr, nullptr);
    m_full.persistentInitialize("cnfg", nullptr);
    m_recorder.takeCalls();
    for (ARXSimpleKRYHandleI* const handle : m_both)
    {
        char* plain = nullptr;
        std::size_t size = 9;
        m_recorder.failCall("KRY_UnprotectData", 1, Fault::Status);
        EXPECT_FALSE(KRY_SUCCEEDED(handle->unprotectData("bytes", 5, &plain, &size, nullptr)));
        EXPECT_EQ("plain", std::string(plain, size));
        handle->cryptoFree(plain, nullptr);
        handle->getInfo(nullptr, nullptr, nullptr);
    }
    EXPECT_EQ((Lines{"KRY_UnprotectData S1 bytes wanted 9", "KRY_CryptoFree data", "KRY_GetInfo S1",
                     "KRY_UnprotectData S2 bytes wanted 9", "KRY_CryptoFree data", "KRY_GetInfo S2"}),
              m_recorder.takeCalls());
    KRY_CloseHandle(&m_session, nullptr, nullptr);
}

TEST_F(ARXKRYHandleTest, SizesBeyond32BitsReachNeitherTheLockNorTheInterface)
{
    if (SIZE_MAX == UINT32_MAX)
        GTEST_SKIP() << "no size is that large here";
    NEBThreadGuard const guard(m_lock);
    char* data = nullptr;
    std::size_t size = std::size_t(UINT32_MAX) + 1;
    for (ARXSimpleKRYHandleI* const handle : m_both)
    {
        EXPECT_THROW(handle->protectData("", size, &data, &size, nullptr), NEBException);
        EXPECT_THROW(handle->unprotectData("", 0, &data, &size, nullptr), NEBException);
    }
    EXPECT_EQ(Lines(), m_recorder.takeCalls());
}
