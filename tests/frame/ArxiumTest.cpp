#include "frame/Arxium.h"

#include <thread>
#include <tuple>

#include "crypto/ARXKRYHandleFactory.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
std::string const s_head = " <?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>";
std::string const s_body = "Document><serviceID>Arxium</serviceID></";
std::string const s_start =
    "I18NInitialize, Initialize" + s_head + "<initialize" + s_body + "initializeDocument>";
std::string const s_stop = "Terminate" + s_head + "<terminate" + s_body + "terminateDocument>, I18NTerminate";

bool isServing()
{
    return raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); }).empty();
}
using ArxiumTest = RecordedTest;
}  // namespace

TEST_F(ArxiumTest, OnlyTheFirstStartAndTheLastStopWork)
{
    // F a full start, H one without services, T a stop.
    std::pair<char const*, std::string> const s_sequences[] = {
        {"FT", "F, " + s_start + ", T, " + s_stop},
        {"HT", "H, T"},
        {"HFTT", "H, F, T, T"},
        {"FHTT", "F, " + s_start + ", H, T, T, " + s_stop},
        {"HTFT", "H, T, F, " + s_start + ", T, " + s_stop},
    };
    for (auto const& [steps, story] : s_sequences)
    {
        int starts = 0;
        for (char const* step = steps; *step; ++step)
        {
            m_recorder.record({*step}, "");
            *step == 'T' ? Arxium::terminate() : Arxium::initialize(*step == 'F');
            starts += *step == 'T' ? -1 : 1;
            EXPECT_EQ(starts > 0, isServing()) << step;
        }
        EXPECT_EQ(story, m_recorder.takeStory());
    }
}

TEST_F(ArxiumTest, TheLastStopClosesSharedSessionsWhileTheInterfaceIsUp)
{
    Arxium::initialize();
    ARXKRYHandleFactory::destroyHandle(ARXKRYHandleFactory::createHandle("cnfg", "info"));
    Arxium::terminate();
    EXPECT_EQ(s_start + ", PersistentInitialize cnfg, SetInfo S1 info, CloseHandle S1, " + s_stop,
              m_recorder.takeStory());
}

TEST_F(ArxiumTest, AFailedStartDoesNotCountAndTheNextOneIsAFirstStartAgain)
{
    std::string const refused =
        "NEBAssertError: NEB_ASSERT_NAMED(::initCrypto(), \"Arxium::initialize - crypto "
        "initialization failed\"); | frame/Arxium.cpp NEB_THROW";
    std::tuple<Fault, std::string, std::string> const s_failures[] = {
        {Fault::Details, refused, ", Free details"},
        {Fault::Status, refused, ""},
        {Fault::Exception, "raised", ", Free details"},
    };
    for (auto const& [fault, raised, frees] : s_failures)
    {
        m_recorder.failCall("KRY_CryptoInitialize", 1, fault);
        EXPECT_EQ(raised, joined(raisedBy([] { Arxium::initialize(); })));
        EXPECT_FALSE(isServing());
        Arxium::initialize();
        Arxium::terminate();
        EXPECT_EQ(s_start + frees + ", " + s_start + ", " + s_stop, m_recorder.takeStory());
    }
}

TEST_F(ArxiumTest, AFailedStopIsCompletedSilently)
{
    for (Fault const fault : {Fault::Details, Fault::Status, Fault::Exception})
    {
        Arxium::initialize();
        m_recorder.failCall("KRY_CryptoTerminate", 1, fault);
        EXPECT_EQ(Lines(), raisedBy([] { Arxium::terminate(); }));
        EXPECT_EQ("I18NTerminate", m_recorder.takeCalls().back());
        EXPECT_FALSE(isServing());
    }
}

TEST_F(ArxiumTest, AStopBeforeAnyStartIsRefused)
{
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(m_initcount > 0); | frame/Arxium.cpp NEB_THROW",
              joined(raisedBy([] { Arxium::terminate(); })));
    EXPECT_EQ("", m_recorder.takeStory());
}

TEST_F(ArxiumTest, StartsBeyondTheCounterAreRefusedAndDoNotWrapIt)
{
    for (int starts = 0; starts < INT16_MAX; ++starts)
        Arxium::initialize(false);
    EXPECT_EQ(2u, raisedBy([] { Arxium::initialize(false); }).size());
    for (int stops = 0; stops < INT16_MAX; ++stops)
        Arxium::terminate();
    EXPECT_FALSE(isServing());
}

TEST_F(ArxiumTest, StartsAndStopsFromManyThreadsBalance)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back(
            []
            {
                for (int round = 0; round < 100; ++round)
                    Arxium::initialize(), Arxium::terminate();
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(isServing());
    EXPECT_EQ("I18NTerminate", m_recorder.takeCalls().back());
}
