#include "frame/Arxium.h"

#include <tuple>

#include "crypto/ARXKRYHandleFactory.h"
#include "support/CryptoRecorder.h"

using ArxiumTest = RecordedTest;

TEST_F(ArxiumTest, OnlyTheFirstStartAndTheLastStopWorkAndAFailedStartDoesNotCount)
{
    std::map<char, void (*)()> const calls = {
        {'F', [] { Arxium::initialize(); }},
        {'H', [] { Arxium::initialize(false); }},
        {'S', [] { ARXKRYHandleFactory::destroyHandle(ARXKRYHandleFactory::createHandle("cnfg", "info")); }},
        {'T', [] { Arxium::terminate(); }}};
    auto const exchange = [](std::string const& call, std::string const& root)
    {
        return call + " <?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><" + root +
               "><serviceID>Arxium</serviceID></" + root + ">, ";
    };
    std::string const begin = "I18NInitialize, " + exchange("Initialize", "initializeDocument"),
                      close = exchange("Terminate", "terminateDocument"), end = close + "I18NTerminate, ",
                      init = "KRY_CryptoInitialize", term = "KRY_CryptoTerminate", free = "Free details, ",
                      error = "- NEBAssertError: NEB_ASSERT";
    std::string const full = begin + "F+, " + end + "T-", thrown = "); | frame/Arxium.cpp NEB_THROW, ";
    std::string const text = "_NAMED(::initCrypto(), \"Arxium::initialize - crypto initialization failed\"";
    std::string const failed = begin + "F+, " + close + free + "I18NTerminate, T-";
    std::string const shared = "PersistentInitialize cnfg, SetInfo S1 info, S+, CloseHandle S1, ";
    // What was called, and each step behind it: whether the library serves then, and what the step raised.
    std::tuple<std::string, Fault, std::string, std::string> const rows[] = {
        {"", Fault::None, "HFTT", "H+, F+, T+, T-"},
        {"", Fault::None, "FHTT", begin + "F+, H+, T+, " + end + "T-"},
        {"", Fault::None, "HTFT", "H+, T-, " + full},
        {"", Fault::None, "TFT", "T" + error + "(m_initcount > 0" + thrown + full},
        {"", Fault::None, "FST", begin + "F+, " + shared + end + "T-"},
        {init, Fault::Details, "FFT", begin + free + "F" + error + text + thrown + full},
        {term, Fault::Details, "FT", failed},
        {term, Fault::Exception, "FT", failed},
    };
    for (auto const& [function, fault, steps, story] : rows)
    {
        m_recorder.reset();
        m_recorder.failCall(function, 1, fault);
        for (char const step : steps)
        {
            std::string const raised = joined(raisedBy(calls.at(step)));
            bool const isServing = raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); }).empty();
            m_recorder.m_calls.push_back(step + std::string(isServing ? "+" : "-") +
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
}
