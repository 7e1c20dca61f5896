#include "crypto/ARXKRYHandleFactoryWorker.h"

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "support/CryptoRecorder.h"

namespace
{
using ARXKRYHandleFactoryWorkerTest = StartedTest;

void use(char const* cnfgDoc, char const* infoDoc)
{
    ARXSimpleKRYHandleIPtr(ARXKRYHandleFactory::createHandle(cnfgDoc, infoDoc))
        ->getInfo(nullptr, nullptr, nullptr);
}
}  // namespace

TEST_F(ARXKRYHandleFactoryWorkerTest, SetsUpEachPairOfTextsOnce)
{
    // The checksum of the joined texts is the only identity: "cnfginfo" ffbde6d8, "cnfgother" a46b9f46.
    use("cnfg", "info");
    use("cnfg", std::string("info").c_str());
    use("cnfg", "other");
    use("cnfgin", "fo");
    Arxium::terminate();
    Arxium::initialize(false);
    Lines const expected = {
        "KRY_PersistentInitialize cnfg",
        "KRY_SetInfo S1 info",
        "KRY_GetInfo S1",
        "KRY_GetInfo S1",
        "KRY_PersistentInitialize cnfg",
        "KRY_SetInfo S2 other",
        "KRY_GetInfo S2",
        "KRY_GetInfo S1",
        "KRY_CloseHandle S2",
        "KRY_CloseHandle S1",
    };
    EXPECT_EQ(expected, m_recorder.takeCalls());
}

TEST_F(ARXKRYHandleFactoryWorkerTest, TriesAgainAfterAFailedSetUp)
{
    std::string const thrown =
        "ARXException: reason | crypto/ARXKRYHandleFactoryWorker.cpp NEB_THROW "
        "ARXKRYHandleFactoryWorker::HandleResource::initHandle - Error in ";
    for (std::string const function : {"KRY_PersistentInitialize", "KRY_SetInfo"})
    {
        m_recorder.failCall(function, 1, Fault::Details);
        EXPECT_EQ(thrown + function, joined(raisedBy([] { use("cnfg", "info"); })));
    }
    m_recorder.takeCalls();
    use("cnfg", "info");
    EXPECT_EQ("KRY_PersistentInitialize cnfg", m_recorder.takeCalls()[0]);
}

TEST_F(ARXKRYHandleFactoryWorkerTest, RefusesWhatItCanNotServe)
{
    m_recorder.failCall("KRY_PersistentInitialize", 1, Fault::NullSession);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(m_kryHandle, \"KRY handle not initialized\");",
              raisedBy([] { use("cnfg", "info"); }).at(0));
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(infoDoc);", raisedBy([] { use("cnfg", nullptr); }).at(0));
}
