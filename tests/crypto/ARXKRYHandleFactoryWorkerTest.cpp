#include "crypto/ARXKRYHandleFactoryWorker.h"

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"

namespace
{
struct ARXKRYHandleFactoryWorkerTest : RecordedTest
{
    ARXKRYHandleFactoryWorkerTest() { Arxium::initialize(false); }
    ~ARXKRYHandleFactoryWorkerTest() override { Arxium::terminate(); }
    void restart() { Arxium::terminate(), Arxium::initialize(false); }
};

void use(char const* cnfgDoc, char const* infoDoc)
{
    ARXSimpleKRYHandleIPtr(ARXKRYHandleFactory::createHandle(cnfgDoc, infoDoc))
        ->getInfo(nullptr, nullptr, nullptr);
}
}  // namespace

TEST_F(ARXKRYHandleFactoryWorkerTest, OnePairOfTextsIsSetUpOnceAndClosedByTheStopInOrderOfTheKeys)
{
    // The checksum of the joined texts is the only identity: "cnfginfo" ffbde6d8, "cnfgother" a46b9f46, "" 0.
    use("cnfg", "info");
    use("cnfg", std::string("info").c_str());
    use("cnfg", "other");
    use("cnfgin", "fo");
    use("", "");
    restart();
    std::string const begin = "PersistentInitialize cnfg, SetInfo ", used = "GetInfo S1 null null null, ";
    EXPECT_EQ(begin + "S1 info, " + used + used + begin + "S2 other, GetInfo S2 null null null, " + used +
                  "PersistentInitialize, SetInfo S3 , GetInfo S3 null null null, "
                  "CloseHandle S3, CloseHandle S2, CloseHandle S1",
              m_recorder.takeStory());
}

TEST_F(ARXKRYHandleFactoryWorkerTest, AFailedSetUpLeavesNothingBehindAndIsTriedAgain)
{
    std::string const thrown =
        "ARXException: reason | crypto/ARXKRYHandleFactoryWorker.cpp NEB_THROW "
        "ARXKRYHandleFactoryWorker::HandleResource::initHandle - Error in ";
    std::string const first = "PersistentInitialize cnfg", both = first + ", SetInfo S1 info";
    std::string const details = ", GetLastErrorDetails S1, Free details, CloseHandle S1";
    std::pair<std::string, std::string> const rows[] = {
        {"KRY_PersistentInitialize", first + ", Free details"}, {"KRY_SetInfo", both + details}};
    for (auto const& [function, story] : rows)
    {
        m_recorder.reset();
        m_recorder.failCall(function, 1, Fault::Details);
        EXPECT_EQ(thrown + function, joined(raisedBy([] { use("cnfg", "info"); })));
        EXPECT_EQ(story, m_recorder.takeStory());
        use("cnfg", "info");
        EXPECT_EQ("KRY_PersistentInitialize cnfg", m_recorder.takeCalls()[0]);
        restart();
        EXPECT_EQ(Lines(), m_recorder.problems());
    }
}

TEST_F(ARXKRYHandleFactoryWorkerTest, RefusesNullSessionsNullDocumentsAndEverythingWithoutAWorker)
{
    ARXKRYHandleFactory::destroyHandle(nullptr);
    m_recorder.failCall("KRY_PersistentInitialize", 1, Fault::NullSession);
    std::string const none = "_NAMED(m_kryHandle, \"KRY handle not initialized\");", noWorker = "(m_worker);";
    std::pair<void (*)(), std::string> const rows[] = {
        {[] { use("cnfg", "info"); }, none},
        {[] { use("cnfg", "info"); }, none},
        {[] { use(nullptr, nullptr); }, "(cnfgDoc);"},
        {[] { use("cnfg", nullptr); }, "(infoDoc);"},
        {[] { ARXKRYHandleFactory::setFactoryWorker(nullptr), use("cnfg", "info"); }, noWorker},
        {[] { ARXKRYHandleFactory::createHandle(); }, noWorker},
        {[] { ARXKRYHandleFactory::destroyHandle(nullptr); }, noWorker},
    };
    for (auto const& [call, text] : rows)
        EXPECT_EQ("NEBAssertError: NEB_ASSERT" + text, raisedBy(call).at(0));
    EXPECT_EQ("PersistentInitialize cnfg, SetInfo null info", m_recorder.takeStory());
}
