#include "frame/Arxium.h"

#include <tuple>

#include "crypto/ARXKRYHandleFactory.h"
#include "support/CryptoRecorder.h"

using ArxiumTest = RecordedTest;

TEST_F(ArxiumTest, OnlyTheFirstStartAndTheLastStopWorkAndAFailedStartDoesNotCount)
{
    std::map<char, void (*)()> const actions = {
        {'F', [] { Arxium::initialize(); }},
        {'H', [] { Arxium::initialize(false); }},
        {'S', [] { ARXKRYHandleFactory::destroyHandle(ARXKRYHandleFactory::createHandle("cnfg", "info")); }},
        {'T', [] { Arxium::terminate(); }}};
    auto const exchange = [](std::string const& call, std::string const& root)
    {
        return call + " <?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><" + root +
               "><serviceID>Arxium</serviceID></" + root + ">";
    };
    std::string const init = "KRY_CryptoInitialize", term = "KRY_CryptoTerminate",
                      free = "KRY_CryptoFree details", startTexts = "I18NInitialize",
                      startCrypto = exchange(init, "initializeDocument"),
                      stopCrypto = exchange(term, "terminateDocument"), stopTexts = "I18NTerminate",
                      error = "- NEBAssertError: NEB_ASSERT", thrown = "); | frame/Arxium.cpp NEB_THROW",
                      notRunning = "T" + error + "(m_initcount > 0" + thrown,
                      notStarted = "F" + error +
                                   "_NAMED(::initCrypto(), \"Arxium::initialize - crypto "
                                   "initialization failed\"" +
                                   thrown;
    Lines const start = {startTexts, startCrypto, "F+"}, stop = {stopCrypto, stopTexts, "T-"},
                full = concatenated({start, stop}),
                failedStop = concatenated({start, {stopCrypto, free, stopTexts, "T-"}});
    // What was called, and after each step: whether the library serves then, and what the step raised.
    std::tuple<std::string, Fault, std::string, Lines> const rows[] = {
        {"", Fault::None, "HFTT", {"H+", "F+", "T+", "T-"}},
        {"", Fault::None, "FHTT", concatenated({start, {"H+", "T+"}, stop})},
        {"", Fault::None, "HTFT", concatenated({{"H+", "T-"}, full})},
        {"", Fault::None, "TFT", concatenated({{notRunning}, full})},
        {"", Fault::None, "FST",
         concatenated({start,
                       {"KRY_PersistentInitialize cnfg", "KRY_SetInfo S1 info", "S+", "KRY_CloseHandle S1"},
                       stop})},
        {init, Fault::Details, "FFT", concatenated({{startTexts, startCrypto, free, notStarted}, full})},
        {term, Fault::Details, "FT", failedStop},
        {term, Fault::Exception, "FT", failedStop},
    };
    for (auto const& [function, fault, steps, calls] : rows)
    {
        m_recorder.reset();
        m_recorder.failCall(function, 1, fault);
        for (char const step : steps)
        {
            std::string const raised = joined(raisedBy(actions.at(step)));
            bool const isServing = raisedBy([] { ARXKRYHandleFactory::destroyHandle(nullptr); }).empty();
            m_recorder.m_calls.push_back(step + std::string(isServing ? "+" : "-") +
                                         (raised.empty() ? "" : " " + raised));
        }
        EXPECT_EQ(calls, m_recorder.takeCalls());
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
