// Test doubles of the crypto interface, the text services and the configuration.
//
// A program that links them calls them in place of the shared libraries' functions. They record what they are
// asked in order, can fail on the n-th call of a function, and know what has not come back.

#ifndef ARXIUM_TESTS_SUPPORT_CRYPTORECORDER_H
#define ARXIUM_TESTS_SUPPORT_CRYPTORECORDER_H

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include <gtest/gtest.h>

#include "support/Raised.h"

enum class Fault
{
    None,
    Details,      // a failed status and the details "reason"
    Status,       // a failed status alone
    NullSession,  // a good status, but nothing is opened
    Exception     // std::runtime_error "raised"; details are set before
};

struct CryptoRecorder
{
    static CryptoRecorder& get() { return s_instance; }
    void reset() { *this = {}; }

    // Lets one call of a function, counted from 1 and from now on, fail; of each function at most one.
    void failCall(std::string const& function, int call, Fault fault) { m_faults[function] = {call, fault}; }
    // Whether that call was made.
    bool hasFailed(std::string const& function) { return m_faults[function].second == Fault::None; }
    // The calls since this was last asked: the function's name, then "S1" for the session, document or data.
    // Sessions and what is freed are named in the order in which, and as what, they were handed out.
    Lines takeCalls() { return std::exchange(m_calls, {}); }
    // The same in one line: "SetInfo S1 info, Free details", without "KRY_" and "Crypto".
    std::string takeStory();
    // What was not given back. Calls that overlap or come behind the end of their session fail at once.
    Lines problems() const;

    struct Session
    {
        explicit Session(std::string name) : m_name(std::move(name)) {}
        std::string m_name;
        std::string m_infoDoc;
        std::mutex m_use{};         // held during each call
        bool m_closeAsked = false;  // enough for us: one that won't close is the interface's
        bool m_closed = false;
    };
    static CryptoRecorder s_instance;

    std::map<std::string, std::string> m_settings;  // of the configuration
    std::function<void()> m_duringProtect;          // run inside each KRY_ProtectData, which returns "<DATA>"
    Lines m_calls;
    std::map<std::string, std::pair<int, Fault>> m_faults;  // by function: calls up to the failing one
    std::deque<Session> m_sessions;
    std::map<void*, std::pair<std::string, std::unique_ptr<char[]>>> m_memory;  // handed out, as what
};

// Starts with fresh doubles and ends by looking for what was not given back.
struct RecordedTest : testing::Test
{
    RecordedTest() { m_recorder.reset(); }
    ~RecordedTest() override { EXPECT_EQ(Lines(), m_recorder.problems()); }

    CryptoRecorder& m_recorder = CryptoRecorder::get();
};

#endif
