#include "crypto/ARXKRYHandle.h"

#include <tuple>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/NEBThreadGuard.h"
#include "crypto/ARXSimpleKRYHandle.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

using ARXKRYHandleTest = RecordedTest;

TEST_F(ARXKRYHandleTest, EachFailureIsToldWithItsDetailsAndFreesThem)
{
    std::string const thrown = " | crypto/ARXKRYHandle.cpp NEB_THROW ARXKRYHandle::";
    std::string const open = thrown + "persistentInitialize - Error in KRY_PersistentInitialize";
    std::string const set = thrown + "setInfo - Error in KRY_SetInfo";
    std::string const close = thrown + "closeHandle - Error in KRY_CloseHandle";
    std::string const first = "PersistentInitialize one";
    std::string const all = "PersistentInitialize one, SetInfo S1 info, CloseHandle S1";
    std::tuple<char const*, int, Fault, std::string, std::string> const s_cases[] = {
        {"none", 1, Fault::None, "", all + ", PersistentInitialize two, CloseHandle S2"},
        {"KRY_PersistentInitialize", 1, Fault::Details, "ARXException: reason" + open,
         first + ", Free details"},
        {"KRY_PersistentInitialize", 1, Fault::Status, "ARXException: " + open, first},
        {"KRY_PersistentInitialize", 1, Fault::Exception, "raised", first + ", Free details"},
        {"KRY_PersistentInitialize", 2, Fault::Status, "ARXException: " + open,
         all + ", PersistentInitialize two"},
        {"KRY_SetInfo", 1, Fault::Status, "ARXException: reason" + set,
         first + ", SetInfo S1 info, GetLastErrorDetails S1, Free details, CloseHandle S1"},
        {"KRY_CloseHandle", 1, Fault::Details, "ARXException: reason" + close,
         all + ", Free details, CloseHandle S1"},
        {"KRY_CloseHandle", 1, Fault::Status, "ARXException: " + close, all + ", CloseHandle S1"},
        {"KRY_CloseHandle", 1, Fault::Exception, "raised", all + ", Free details, CloseHandle S1"},
        {"KRY_CloseHandle", 2, Fault::Details, "",
         all + ", PersistentInitialize two, CloseHandle S2, Free details"},
    };
    for (auto const& [function, call, fault, raised, story] : s_cases)
    {
        m_recorder.reset();
        m_recorder.failCall(function, call, fault);
        EXPECT_EQ(raised, joined(raisedBy(
                              []
                              {
                                  ARXKRYHandle handle;
                                  handle.persistentInitialize("one", nullptr);
                                  handle.setInfo("info", nullptr);
                                  handle.persistentInitialize("two", nullptr);
                              })));
        EXPECT_EQ(story, m_recorder.takeStory());
        EXPECT_EQ(Lines(), m_recorder.problems());
    }
}

TEST_F(ARXKRYHandleTest, WithoutASessionNothingIsClosedAndWithoutDetailsThereIsNoMessage)
{
    ARXKRYHandle handle;
    handle.closeHandle();
    m_recorder.failCall("KRY_SetInfo", 1, Fault::Status);
    m_recorder.failCall("KRY_CryptoGetLastErrorDetails", 1, Fault::Status);
    EXPECT_EQ("ARXException: ", raisedBy([&] { handle.setInfo("info", nullptr); }).at(0));
    EXPECT_EQ("SetInfo null info, GetLastErrorDetails null", m_recorder.takeStory());
}

TEST_F(ARXKRYHandleTest, BothKindsPassDataAndWriteTheSizeAlsoOnFailure)
{
    void* session = nullptr;
    KRY_PersistentInitialize(&session, "cnfg", nullptr, nullptr);
    NEBThreadCriticalSection lock(0);
    ARXSimpleKRYHandle simple(session, lock);
    ARXKRYHandle full;
    full.persistentInitialize("cnfg", nullptr);
    m_recorder.takeCalls();
    std::pair<ARXSimpleKRYHandleI*, std::string> const handles[] = {{&simple, "S1 "}, {&full, "S2 "}};
    for (auto const& [handle, name] : handles)
        for (Fault const fault : {Fault::None, Fault::Status})
        {
            for (char const* function : {"KRY_ProtectData", "KRY_UnprotectData", "KRY_GetInfo"})
                m_recorder.failCall(function, 1, fault);
            char *data = nullptr, *plain = nullptr;
            std::size_t size = 0, plainSize = 9;
            char words[3][2] = {"a", "b", "c"};
            bool const good = fault == Fault::None;
            EXPECT_EQ(good, KRY_SUCCEEDED(handle->protectData("bytes", 2, &data, &size, nullptr)));
            EXPECT_EQ(good, KRY_SUCCEEDED(handle->unprotectData("bytes", 5, &plain, &plainSize, nullptr)));
            EXPECT_EQ(good, KRY_SUCCEEDED(handle->getInfo(words[0], words[1], words[2])));
            EXPECT_EQ("<by>plain", std::string(data, size) + std::string(plain, plainSize));
            handle->cryptoFree(data, nullptr);
            handle->cryptoFree(plain, nullptr);
            EXPECT_EQ("ProtectData " + name + "by, UnprotectData " + name + "bytes wanted 9, GetInfo " +
                          name + "a b c, Free data, Free data",
                      m_recorder.takeStory());
        }
    KRY_CloseHandle(&session, nullptr, nullptr);
}

TEST_F(ARXKRYHandleTest, SizesBeyond32BitsReachNeitherTheLockNorTheInterface)
{
    std::size_t const tooMuch = std::size_t(UINT32_MAX) + 1;
    void* session = nullptr;
    NEBThreadCriticalSection lock(0);
    NEBThreadGuard const guard(lock);
    ARXSimpleKRYHandle simple(session, lock);
    ARXKRYHandle full;
    for (ARXSimpleKRYHandleI* handle : std::initializer_list<ARXSimpleKRYHandleI*>{&simple, &full})
    {
        char* data = nullptr;
        std::size_t size = tooMuch;
        EXPECT_THROW(handle->protectData("", tooMuch, &data, &size, nullptr), NEBThrowable);
        EXPECT_THROW(handle->unprotectData("", 0, &data, &size, nullptr), NEBThrowable);
    }
    EXPECT_EQ("", m_recorder.takeStory());
}
