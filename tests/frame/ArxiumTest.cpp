#include "frame/Arxium.h"

#include "crypto/ARXKRYHandleFactory.h"
#include "support/CryptoRecorder.h"

namespace
{
using ArxiumTest = RecordedTest;

char const s_startCrypto[] =
    R"(KRY_CryptoInitialize <?xml version="1.0" encoding="UTF-8" standalone="yes"?><initializeDocument><serviceID>Arxium</serviceID></initializeDocument>)";
char const s_stopCrypto[] =
    R"(KRY_CryptoTerminate <?xml version="1.0" encoding="UTF-8" standalone="yes"?><terminateDocument><serviceID>Arxium</serviceID></terminateDocument>)";
Lines const s_start{"I18NInitialize", s_startCrypto}, s_stop{s_stopCrypto, "I18NTerminate"};

// Whether handles can be made, which the library's own maker of handles decides.
bool isServing()
{
    return raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); }).empty();
}

TEST_F(ArxiumTest, OnlyTheFirstStartWorks)
{
    Arxium::initialize();
    EXPECT_EQ(s_start, m_recorder.takeCalls());
    Arxium::initialize(false);
    Arxium::terminate();
    EXPECT_TRUE(isServing());
    EXPECT_EQ(Lines(), m_recorder.takeCalls());
    Arxium::terminate();
    EXPECT_FALSE(isServing());
    EXPECT_EQ(s_stop, m_recorder.takeCalls());
}

TEST_F(ArxiumTest, LastStopClosesSharedSessionsFirst)
{
    Arxium::initialize();
    ARXKRYHandleFactory::destroyHandle(ARXKRYHandleFactory::createHandle("cnfg", "info"));
    m_recorder.takeCalls();
    Arxium::terminate();
    EXPECT_EQ((Lines{"KRY_CloseHandle S1", s_stop[0], s_stop[1]}), m_recorder.takeCalls());
}

TEST_F(ArxiumTest, FailedStartTellsWhy)
{
    m_recorder.failCall("KRY_CryptoInitialize", 1, Fault::Details);
    EXPECT_EQ(
        (Lines{
            R"(NEBAssertError: NEB_ASSERT_NAMED(::initCrypto(), "Arxium::initialize - crypto initialization failed");)",
            "frame/Arxium.cpp NEB_THROW"}),
        raisedBy([] { Arxium::initialize(); }));
    EXPECT_EQ((Lines{s_start[0], s_start[1], "KRY_CryptoFree details"}), m_recorder.takeCalls());
}

TEST_F(ArxiumTest, FailedStopCompletes)
{
    for (Fault const fault : {Fault::Details, Fault::Exception})
    {
        Arxium::initialize();
        m_recorder.takeCalls();
        m_recorder.failCall("KRY_CryptoTerminate", 1, fault);
        Arxium::terminate();
        EXPECT_FALSE(isServing());
        EXPECT_EQ((Lines{s_stop[0], "KRY_CryptoFree details", s_stop[1]}), m_recorder.takeCalls());
    }
}

TEST_F(ArxiumTest, StartsBeyondTheCounterAreRefused)
{
    for (int starts = 0; starts < INT16_MAX; ++starts)
        Arxium::initialize(false);
    EXPECT_EQ(2u, raisedBy([] { Arxium::initialize(false); }).size());
    for (int stops = 0; stops < INT16_MAX; ++stops)
        Arxium::terminate();
}
}  // namespace
