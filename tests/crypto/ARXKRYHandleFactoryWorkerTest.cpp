#include "crypto/ARXKRYHandleFactoryWorker.h"

#include <algorithm>
#include <thread>
#include <tuple>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "crypto/ARXKRYDataPtr.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
class ARXKRYHandleFactoryWorkerTest : public RecordedTest
{
protected:
    ARXKRYHandleFactoryWorkerTest() { Arxium::initialize(false); }
    ~ARXKRYHandleFactoryWorkerTest() override { Arxium::terminate(); }
    void restart() { Arxium::terminate(), Arxium::initialize(false); }
};

std::string protect(char const* cnfgDoc, char const* infoDoc, std::string const& data = "data")
{
    ARXSimpleKRYHandleIPtr const handle(ARXKRYHandleFactory::createHandle(cnfgDoc, infoDoc));
    char* out = nullptr;
    std::size_t size = 0;
    handle->protectData(data.c_str(), data.size(), &out, &size, nullptr);
    ARXKRYDataPtr const guard(handle.get(), out);
    return std::string(out, size);
}
}  // namespace

TEST_F(ARXKRYHandleFactoryWorkerTest, OnePairOfTextsIsSetUpOnceAndClosedByTheStopInOrderOfTheKeys)
{
    // The checksum of the joined texts is the only identity: "cnfginfo" ffbde6d8, "cnfgother" a46b9f46, "" 0.
    protect("cnfg", std::string("info").c_str());
    protect("cnfg", std::string("info").c_str());
    protect("cnfg", "other");
    protect("cnfgin", "fo");
    protect("", "");
    restart();
    EXPECT_EQ(
        "PersistentInitialize cnfg, SetInfo S1 info, ProtectData S1 data, Free data, "
        "ProtectData S1 data, Free data, "
        "PersistentInitialize cnfg, SetInfo S2 other, ProtectData S2 data, Free data, "
        "ProtectData S1 data, Free data, "
        "PersistentInitialize, SetInfo S3 , ProtectData S3 data, Free data, "
        "CloseHandle S3, CloseHandle S2, CloseHandle S1",
        m_recorder.takeStory());
}

TEST_F(ARXKRYHandleFactoryWorkerTest, AFailedSetUpLeavesNothingBehindAndIsTriedAgain)
{
    std::string const thrown =
        " | crypto/ARXKRYHandleFactoryWorker.cpp NEB_THROW "
        "ARXKRYHandleFactoryWorker::HandleResource::initHandle - Error in ";
    std::string const open = thrown + "KRY_PersistentInitialize", set = thrown + "KRY_SetInfo";
    std::string const first = "PersistentInitialize cnfg", both = first + ", SetInfo S1 info, ";
    std::tuple<char const*, Fault, std::string, std::string> const s_cases[] = {
        {"KRY_PersistentInitialize", Fault::Details, "ARXException: reason" + open, first + ", Free details"},
        {"KRY_PersistentInitialize", Fault::Status, "ARXException: " + open, first},
        {"KRY_PersistentInitialize", Fault::Exception, "raised", first + ", Free details"},
        {"KRY_SetInfo", Fault::Status, "ARXException: reason" + set,
         both + "GetLastErrorDetails S1, Free details, CloseHandle S1"},
        {"KRY_SetInfo", Fault::Exception, "raised", both + "CloseHandle S1"},
    };
    for (auto const& [function, fault, raised, story] : s_cases)
    {
        m_recorder.reset();
        m_recorder.failCall(function, 1, fault);
        EXPECT_EQ(raised, joined(raisedBy([] { protect("cnfg", "info"); })));
        EXPECT_EQ(story, m_recorder.takeStory());
        EXPECT_EQ("<data>", protect("cnfg", "info"));
        EXPECT_EQ("KRY_PersistentInitialize cnfg", m_recorder.takeCalls()[0]);
        restart();
        EXPECT_EQ(Lines(), m_recorder.problems());
    }
}

TEST_F(ARXKRYHandleFactoryWorkerTest, ANullSessionStaysInTheMapAndServesNobody)
{
    m_recorder.failCall("KRY_PersistentInitialize", 1, Fault::NullSession);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(m_kryHandle, \"KRY handle not initialized\");",
                  raisedBy([] { protect("cnfg", "info"); }).at(0));
    EXPECT_EQ("PersistentInitialize cnfg, SetInfo null info", m_recorder.takeStory());
}

TEST_F(ARXKRYHandleFactoryWorkerTest, RefusesNullDocumentsAndEverythingWithoutAWorker)
{
    ARXKRYHandleFactory::destroyHandle(nullptr);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(cnfgDoc);", raisedBy([] { protect(nullptr, nullptr); }).at(0));
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(infoDoc);", raisedBy([] { protect("cnfg", nullptr); }).at(0));
    ARXKRYHandleFactory::setFactoryWorker(nullptr);
    std::string const refused =
        "NEBAssertError: NEB_ASSERT(m_worker); | crypto/ARXKRYHandleFactory.cpp NEB_THROW";
    EXPECT_EQ(refused, joined(raisedBy([] { ARXKRYHandleFactory::createHandle(); })));
    EXPECT_EQ(refused, joined(raisedBy([] { ARXKRYHandleFactory::createHandle("cnfg", "info"); })));
    EXPECT_EQ(refused, joined(raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); })));
    EXPECT_EQ("", m_recorder.takeStory());
}

TEST_F(ARXKRYHandleFactoryWorkerTest, ACallHoldsNeitherTheWorkerNorAnotherSessionAndAnExceptionFreesItsOwn)
{
    m_recorder.m_duringProtect = [this]
    {
        m_recorder.m_duringProtect = nullptr;
        EXPECT_EQ("<inner>", protect("cnfg", "other", "inner"));
    };
    m_recorder.failCall("KRY_ProtectData", 1, Fault::Exception);
    EXPECT_EQ("raised", joined(raisedBy([] { protect("cnfg", "info"); })));
    EXPECT_EQ("<data>", protect("cnfg", "info"));
}

TEST_F(ARXKRYHandleFactoryWorkerTest, ManyThreadsShareOneSessionForEachPairAndNeverMeetOnIt)
{
    int constexpr pairs = 40;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back(
            []
            {
                for (int i = 0; i < 10 * pairs; ++i)
                    EXPECT_EQ("<data>", protect("cnfg", std::to_string(i / 10).c_str()));
            });
    for (std::thread& thread : threads)
        thread.join();
    Lines const calls = m_recorder.takeCalls();
    EXPECT_EQ(pairs, std::count(calls.begin(), calls.end(), "KRY_PersistentInitialize cnfg"));
}
