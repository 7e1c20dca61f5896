#include "crypto/ARXKRYHandle.h"

#include <tuple>

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

TEST_F(ARXKRYHandleTest, EachFailureIsToldWithItsDetailsAndFreesThem)
{
    std::string const thrown = " | crypto/ARXKRYHandle.cpp NEB_THROW ARXKRYHandle::";
    std::string const reason = "ARXException: reason" + thrown, none = "ARXException: no messages" + thrown;
    std::string const open = "persistentInitialize - Error in KRY_PersistentInitialize";
    std::string const set = "setInfo - Error in KRY_SetInfo",
                      close = "closeHandle - Error in KRY_CloseHandle";
    std::string const first = "PersistentInitialize one", second = first + ", SetInfo S1 info";
    std::string const last = "GetLastErrorDetails S1", third = second + ", CloseHandle S1";
    std::string const free = ", Free details", again = ", CloseHandle S1",
                      next = ", PersistentInitialize two";
    std::tuple<std::string, int, Fault, std::string, std::string> const rows[] = {
        {"", 1, Fault::None, "", third + next + ", CloseHandle S2"},
        {"PersistentInitialize", 1, Fault::Details, reason + open, first + free},
        {"PersistentInitialize", 2, Fault::Status, none + open, third + next},
        {"SetInfo", 1, Fault::Status, reason + set, second + ", " + last + free + again},
        {"CloseHandle", 1, Fault::Details, reason + close, third + free + again},
        {"CloseHandle", 2, Fault::Details, "", third + next + ", CloseHandle S2" + free},
    };
    for (auto const& [function, call, fault, raised, story] : rows)
    {
        m_recorder.reset();
        m_recorder.failCall("KRY_" + function, call, fault);
        auto const use = []
        {
            ARXKRYHandle handle;
            handle.closeHandle();
            handle.persistentInitialize("one", nullptr);
            handle.setInfo("info", nullptr);
            handle.persistentInitialize("two", nullptr);
        };
        EXPECT_EQ(raised, joined(raisedBy(use)));
        EXPECT_EQ(story, m_recorder.takeStory());
        EXPECT_EQ(Lines(), m_recorder.problems());
    }
}

TEST_F(ARXKRYHandleTest, BothKindsPassDataAndWriteTheSizeAlsoOnFailure)
{
    KRY_PersistentInitialize(&m_session, "cnfg", nullptr, nullptr);
    m_full.persistentInitialize("cnfg", nullptr);
    m_recorder.takeCalls();
    for (ARXSimpleKRYHandleI* const handle : m_both)
        for (Fault const fault : {Fault::None, Fault::Status})
        {
            for (char const* function : {"KRY_ProtectData", "KRY_UnprotectData", "KRY_GetInfo"})
                m_recorder.failCall(function, 1, fault);
            char *data = nullptr, *plain = nullptr, words[3][2] = {"a", "b", "c"};
            std::size_t size = 0, plainSize = 9;
            bool const good = fault == Fault::None;
            EXPECT_EQ(good, KRY_SUCCEEDED(handle->protectData("bytes", 2, &data, &size, nullptr)));
            EXPECT_EQ(good, KRY_SUCCEEDED(handle->unprotectData("bytes", 5, &plain, &plainSize, nullptr)));
            EXPECT_EQ(good, KRY_SUCCEEDED(handle->getInfo(words[0], words[1], words[2])));
            EXPECT_EQ("<by>plain", std::string(data, size) + std::string(plain, plainSize));
            handle->cryptoFree(data, nullptr);
            handle->cryptoFree(plain, nullptr);
            std::string const name = handle == &m_full ? "S2 " : "S1 ";
            EXPECT_EQ("ProtectData " + name + "by, UnprotectData " + name + "bytes wanted 9, GetInfo " +
                          name + "a b c, Free data, Free data",
                      m_recorder.takeStory());
        }
    KRY_CloseHandle(&m_session, nullptr, nullptr);
    m_full.closeHandle();
}

TEST_F(ARXKRYHandleTest, SizesBeyond32BitsReachNeitherTheLockNorTheInterface)
{
    NEBThreadGuard const guard(m_lock);
    char* data = nullptr;
    std::size_t size = std::size_t(UINT32_MAX) + 1;
    for (ARXSimpleKRYHandleI* const handle : m_both)
    {
        EXPECT_THROW(handle->protectData("", size, &data, &size, nullptr), NEBException);
        EXPECT_THROW(handle->unprotectData("", 0, &data, &size, nullptr), NEBException);
    }
    EXPECT_EQ("", m_recorder.takeStory());
}
