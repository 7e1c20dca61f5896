#include "crypto/ARXKRYHandleFactoryWorker.h"

#include <algorithm>
#include <thread>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "crypto/ARXKRYDataPtr.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
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
};

std::string protect(char const* cnfgDoc, char const* infoDoc, std::string const& data)
{
    ARXSimpleKRYHandleIPtr const handle(ARXKRYHandleFactory::createHandle(cnfgDoc, infoDoc));
    char* out = nullptr;
    std::size_t size = 0;
    std::int32_t const status = handle->protectData(data.c_str(), data.size(), &out, &size, nullptr);
    ARXKRYDataPtr const guard(handle.get(), out);
    return KRY_SUCCEEDED(status) ? std::string(out, size) : "failed";
}

Lines error(char const* message, std::string const& function)
{
    return {std::string("ARXException: ") + message,
            "crypto/ARXKRYHandleFactoryWorker.cpp NEB_THROW "
            "ARXKRYHandleFactoryWorker::HandleResource::initHandle - Error in " +
                function};
}
}  // namespace

TEST_F(ARXKRYHandleFactoryWorkerTest, OnePairOfTextsIsSetUpOnceAndClosedByTheStopInOrderOfTheKeys)
{
    for (std::string const info : {"info", "info", "other"})
        EXPECT_EQ("<data>", protect("cnfg", info.c_str(), "data"));
    // The checksum of the joined texts is the only identity; that of "cnfgother" is the smaller one.
    EXPECT_EQ("<data>", protect("cnfgin", "fo", "data"));
    EXPECT_EQ("<data>", protect("", "", "data"));
    Arxium::terminate();
    std::string const use = "KRY_ProtectData ";
    std::string const free = "KRY_CryptoFree data";
    EXPECT_EQ(
        (Lines{"KRY_PersistentInitialize cnfg", "KRY_SetInfo S1 info", use + "S1 data", free, use + "S1 data",
               free, "KRY_PersistentInitialize cnfg", "KRY_SetInfo S2 other", use + "S2 data", free,
               use + "S1 data", free, "KRY_PersistentInitialize", "KRY_SetInfo S3 ", use + "S3 data", free,
               "KRY_CloseHandle S3", "KRY_CloseHandle S2", "KRY_CloseHandle S1"}),
        m_recorder.takeCalls());
    Arxium::initialize(false);
}

TEST_F(ARXKRYHandleFactoryWorkerTest, AFailedSetUpLeavesNothingBehindAndIsTriedAgain)
{
    std::string const open = "KRY_PersistentInitialize cnfg";
    std::string const set = "KRY_SetInfo S1 info";
    std::string const ask = "KRY_CryptoGetLastErrorDetails S1";
    std::string const close = "KRY_CloseHandle S1";
    std::string const free = "KRY_CryptoFree details";
    struct
    {
        char const* m_function;
        Fault m_fault;
        Lines m_raised;
        Lines m_calls;
    } const s_cases[] = {
        {"KRY_PersistentInitialize",
         Fault::Details,
         error("reason", "KRY_PersistentInitialize"),
         {open, free}},
        {"KRY_PersistentInitialize", Fault::Status, error("", "KRY_PersistentInitialize"), {open}},
        {"KRY_PersistentInitialize", Fault::Exception, {"raised"}, {open, free}},
        {"KRY_SetInfo", Fault::Status, error("reason", "KRY_SetInfo"), {open, set, ask, free, close}},
        {"KRY_SetInfo", Fault::Exception, {"raised"}, {open, set, close}},
    };
    for (auto const& failure : s_cases)
    {
        m_recorder.reset();
        m_recorder.failCall(failure.m_function, 1, failure.m_fault);
        EXPECT_EQ(failure.m_raised, raisedBy([] { protect("cnfg", "info", "data"); })) << failure.m_function;
        EXPECT_EQ(failure.m_calls, m_recorder.takeCalls()) << failure.m_function;
        EXPECT_EQ("<data>", protect("cnfg", "info", "data"));
        EXPECT_EQ(open, m_recorder.takeCalls()[0]);
        Arxium::terminate();
        EXPECT_EQ(Lines(), m_recorder.problems());
        Arxium::initialize(false);
    }
}

TEST_F(ARXKRYHandleFactoryWorkerTest, ANullSessionStaysInTheMapAndServesNobody)
{
    m_recorder.failCall("KRY_PersistentInitialize", 1, Fault::NullSession);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(m_kryHandle, \"KRY handle not initialized\");",
                  raisedBy([] { protect("cnfg", "info", "data"); }).at(0));
    EXPECT_EQ((Lines{"KRY_PersistentInitialize cnfg", "KRY_SetInfo null info"}), m_recorder.takeCalls());
}

TEST_F(ARXKRYHandleFactoryWorkerTest, RefusesNullDocumentsAndTakesANullHandle)
{
    ARXKRYHandleFactory::destroyHandle(nullptr);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(cnfgDoc);", raisedBy([] { protect(nullptr, nullptr, ""); }).at(0));
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(infoDoc);", raisedBy([] { protect("cnfg", nullptr, ""); }).at(0));
    EXPECT_EQ(Lines(), m_recorder.takeCalls());
}

TEST_F(ARXKRYHandleFactoryWorkerTest, WithoutAWorkerTheFactorySaysSo)
{
    Arxium::terminate();
    Lines const refused{"NEBAssertError: NEB_ASSERT(m_worker);", "crypto/ARXKRYHandleFactory.cpp NEB_THROW"};
    EXPECT_EQ(refused, raisedBy([] { ARXKRYHandleFactory::createHandle(); }));
    EXPECT_EQ(refused, raisedBy([] { ARXKRYHandleFactory::createHandle("cnfg", "info"); }));
    EXPECT_EQ(refused, raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); }));
    Arxium::initialize(false);
}

TEST_F(ARXKRYHandleFactoryWorkerTest, AClosingFailureAtTheStopLosesNothingElse)
{
    for (Fault const fault : {Fault::Details, Fault::Exception})
    {
        protect("cnfg", "info", "data");
        protect("cnfg", "other", "data");
        m_recorder.failCall("KRY_CloseHandle", 1, fault);
        EXPECT_EQ(Lines(), raisedBy([] { Arxium::terminate(); }));
        EXPECT_TRUE(m_recorder.hasFailed("KRY_CloseHandle"));
        EXPECT_EQ(Lines(), m_recorder.problems());
        Arxium::initialize(false);
    }
}

TEST_F(ARXKRYHandleFactoryWorkerTest, ACallHoldsNeitherTheWorkerNorAnotherSessionAndAnExceptionFreesItsOwn)
{
    m_recorder.m_duringProtect = [this]
    {
        m_recorder.m_duringProtect = nullptr;
        EXPECT_EQ("<inner>", protect("cnfg", "other", "inner"));
    };
    m_recorder.failCall("KRY_ProtectData", 1, Fault::Exception);
    EXPECT_EQ(Lines{"raised"}, raisedBy([] { protect("cnfg", "info", "data"); }));
    EXPECT_EQ("<data>", protect("cnfg", "info", "data"));
}

TEST_F(ARXKRYHandleFactoryWorkerTest, ManyThreadsShareOneSessionForEachPairAndNeverMeetOnIt)
{
    int constexpr pairs = 40;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back(
            []
            {
                for (int pair = 0; pair < pairs; ++pair)
                    for (int i = 0; i < 10; ++i)
                        EXPECT_EQ("<data>", protect("cnfg", std::to_string(pair).c_str(), "data"));
            });
    for (std::thread& thread : threads)
        thread.join();
    Lines const calls = m_recorder.takeCalls();
    EXPECT_EQ(pairs, std::count(calls.begin(), calls.end(), "KRY_PersistentInitialize cnfg"));
}
