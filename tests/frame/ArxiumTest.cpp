#include "frame/Arxium.h"

#include <thread>

#include "crypto/ARXKRYHandleFactory.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
std::string const s_start =
    "KRY_CryptoInitialize <?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
    "<initializeDocument><serviceID>Arxium</serviceID></initializeDocument>";
std::string const s_stop =
    "KRY_CryptoTerminate <?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
    "<terminateDocument><serviceID>Arxium</serviceID></terminateDocument>";
char const s_refused[] =
    "NEBAssertError: NEB_ASSERT_NAMED(::initCrypto(), \"Arxium::initialize - crypto initialization "
    "failed\");";

bool isServing()
{
    return raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); }).empty();
}
}  // namespace

class ArxiumTest : public RecordedTest
{
};

TEST_F(ArxiumTest, OnlyTheFirstStartAndTheLastStopWork)
{
    // F a full start, H one without services, T a stop.
    struct
    {
        char const* m_steps;
        Lines m_calls;
    } const s_sequences[] = {
        {"FT", {"F", "I18NInitialize", s_start, "T", s_stop, "I18NTerminate"}},
        {"HT", {"H", "T"}},
        {"HFTT", {"H", "F", "T", "T"}},
        {"FHTT", {"F", "I18NInitialize", s_start, "H", "T", "T", s_stop, "I18NTerminate"}},
        {"HTFT", {"H", "T", "F", "I18NInitialize", s_start, "T", s_stop, "I18NTerminate"}},
    };
    for (auto const& sequence : s_sequences)
    {
        int starts = 0;
        for (char const* step = sequence.m_steps; *step; ++step)
        {
            m_recorder.record({*step}, "");
            starts += *step == 'T' ? -1 : 1;
            *step == 'F'   ? Arxium::initialize()
            : *step == 'H' ? Arxium::initialize(false)
                           : Arxium::terminate();
            EXPECT_EQ(starts > 0, isServing()) << step;
        }
        EXPECT_EQ(sequence.m_calls, m_recorder.takeCalls()) << sequence.m_steps;
    }
}

TEST_F(ArxiumTest, AFailedStartDoesNotCountAndTheNextOneIsAFirstStartAgain)
{
    struct
    {
        Fault m_fault;
        Lines m_raised;
        Lines m_frees;
    } const s_failures[] = {
        {Fault::Details, {s_refused, "frame/Arxium.cpp NEB_THROW"}, {"KRY_CryptoFree details"}},
        {Fault::Status, {s_refused, "frame/Arxium.cpp NEB_THROW"}, {}},
        {Fault::Exception, {"raised"}, {"KRY_CryptoFree details"}},
    };
    for (auto const& failure : s_failures)
    {
        m_recorder.failCall("KRY_CryptoInitialize", 1, failure.m_fault);
        EXPECT_EQ(failure.m_raised, raisedBy([] { Arxium::initialize(); }));
        EXPECT_FALSE(isServing());
        Lines calls{"I18NInitialize", s_start};
        calls.insert(calls.end(), failure.m_frees.begin(), failure.m_frees.end());
        EXPECT_EQ(calls, m_recorder.takeCalls());

        Arxium::initialize();
        Arxium::terminate();
        EXPECT_EQ((Lines{"I18NInitialize", s_start, s_stop, "I18NTerminate"}), m_recorder.takeCalls());
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
    EXPECT_EQ((Lines{"NEBAssertError: NEB_ASSERT(m_initcount > 0);", "frame/Arxium.cpp NEB_THROW"}),
              raisedBy([] { Arxium::terminate(); }));
    EXPECT_EQ(Lines(), m_recorder.takeCalls());
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
