#include "frame/Arxium.h"

#include <tuple>

#include "crypto/ARXKRYHandleFactory.h"
#include "support/CryptoRecorder.h"
#include "support/Threads.h"

namespace
{
std::string const s_head = " <?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><";
std::string const s_body = "Document><serviceID>Arxium</serviceID></", s_free = "Free details, ";
std::string const s_start =
    "I18NInitialize, Initialize" + s_head + "initialize" + s_body + "initializeDocument>, ";
std::string const s_close = "Terminate" + s_head + "terminate" + s_body + "terminateDocument>, ";
std::string const s_stop = s_close + "I18NTerminate, ";

bool isServing()
{
    return raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); }).empty();
}

std::map<char, void (*)()> const s_steps = {
    {'F', [] { Arxium::initialize(); }},
    {'H', [] { Arxium::initialize(false); }},
    {'S', [] { ARXKRYHandleFactory::destroyHandle(ARXKRYHandleFactory::createHandle("cnfg", "info")); }},
    {'T', [] { Arxium::terminate(); }}};

using ArxiumTest = RecordedTest;
}  // namespace

TEST_F(ArxiumTest, OnlyTheFirstStartAndTheLastStopWorkAndAFailedStartDoesNotCount)
{
    std::string const init = "KRY_CryptoInitialize", term = "KRY_CryptoTerminate",
                      error = "- NEBAssertError: NEB_ASSERT";
    std::string const full = s_start + "F+, " + s_stop + "T-", thrown = "); | frame/Arxium.cpp NEB_THROW, ";
    std::string const text = "_NAMED(::initCrypto(), \"Arxium::initialize - crypto initialization failed\"";
    std::string const failed = s_start + "F+, " + s_close + s_free + "I18NTerminate, T-";
    std::string const shared = "PersistentInitialize cnfg, SetInfo S1 info, S+, CloseHandle S1, ";
    // What was called, and each step behind it: whether the library serves then, and what the step raised.
    std::tuple<std::string, Fault, std::string, std::string> const rows[] = {
        {"", Fault::None, "HT", "H+, T-"},
        {"", Fault::None, "HFTT", "H+, F+, T+, T-"},
        {"", Fault::None, "FHTT", s_start + "F+, H+, T+, " + s_stop + "T-"},
        {"", Fault::None, "HTFT", "H+, T-, " + full},
        {"", Fault::None, "TFT", "T" + error + "(m_initcount > 0" + thrown + full},
        {"", Fault::None, "FST", s_start + "F+, " + shared + s_stop + "T-"},
        {init, Fault::Details, "FFT", s_start + s_free + "F" + error + text + thrown + full},
        {init, Fault::Status, "FFT", s_start + "F" + error + text + thrown + full},
        {init, Fault::Exception, "FFT", s_start + s_free + "F- raised, " + full},
        {term, Fault::Details, "FT", failed},
        {term, Fault::Status, "FT", full},
        {term, Fault::Exception, "FT", failed},
    };
    for (auto const& [function, fault, steps, story] : rows)
    {
        m_recorder.reset();
        m_recorder.failCall(function, 1, fault);
        for (char const step : steps)
        {
            std::string const raised = joined(raisedBy(s_steps.at(step)));
            m_recorder.m_calls.push_back(step + std::string(isServing() ? "+" : "-") +
                                         (raised.empty() ? "" : " " + raised));
        }
        EXPECT_EQ(story, m_recorder.takeStory());
        EXPECT_EQ(Lines(), m_recorder.problems());
    }
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

TEST_F(ArxiumTest, StartsAndStopsFromManyThreadsRunOneAtATime)
{
    onThreads(8,
              [](int)
              {
                  for (int round = 0; round < 100; ++round)
                      Arxium::initialize(), Arxium::terminate();
              });
    EXPECT_FALSE(isServing());
    Lines const calls = m_recorder.takeCalls();
    char const* const block[] = {"I18NInitialize", "KRY_CryptoInitialize", "KRY_CryptoTerminate",
                                 "I18NTerminate"};
    for (std::size_t i = 0; i < calls.size(); ++i)
        EXPECT_EQ(block[i % 4], calls[i].substr(0, calls[i].find(' ')));
    EXPECT_EQ(0u, calls.size() % 4);
}
