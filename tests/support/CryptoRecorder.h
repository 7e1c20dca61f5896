// Test doubles of the crypto interface, the text services and the configuration, which write down each call.
//
// A program that links them calls them instead of the shared libraries' functions. A test derives from
// RecordedTest, lets a call fail if that is its subject, acts, and compares the calls with a list:
//
//     m_recorder.failCall("KRY_SetInfo", 1, Fault::Status);
//     EXPECT_THROW(openSession(), ARXException);
//     EXPECT_EQ((Lines{"KRY_PersistentInitialize cnfg", "KRY_SetInfo S1 info"}), m_recorder.takeCalls());
//
// A call is the function's name and its arguments. Sessions are S1, S2 ... in the order in which they open;
// KRY_CryptoFree names the kind of what it frees, "data" or "details". At the end RecordedTest fails for
// memory that was not freed and sessions that were not closed.

#ifndef ARXIUM_TESTS_SUPPORT_CRYPTORECORDER_H
#define ARXIUM_TESTS_SUPPORT_CRYPTORECORDER_H

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include <gtest/gtest.h>

#include "frame/Arxium.h"
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
    void reset() { *this = {}; }

    // Lets the n-th call of a function from now on fail, counted from 1. Each function has at most one fault.
    void failCall(std::string const& function, int n, Fault fault) { m_faults[function] = {n, fault}; }
    // Whether that call was made.
    bool hasFailed(std::string const& function) { return m_faults[function].second == Fault::None; }
    // The calls since the last takeCalls().
    Lines takeCalls() { return std::exchange(m_calls, {}); }
    // Fails the test for what was not freed or closed. Calls that overlap or use a closed session fail it at
    // once.
    void expectNothingLeft() const;

    struct Session
    {
        explicit Session(std::string name) : m_name(std::move(name)) {}
        std::string m_name;
        std::string m_infoDoc;
        std::mutex m_use{};         // held during each call
        bool m_closeAsked = false;  // a session that can't be closed stays the interface's
        bool m_closed = false;
    };
    static CryptoRecorder s_instance;

    std::map<std::string, std::string> m_settings;  // of the configuration
    std::function<void()> m_duringProtect;          // runs inside KRY_ProtectData, which returns "<DATA>"
    Lines m_calls;
    std::map<std::string, std::pair<int, Fault>> m_faults;  // by function: calls until the failing one
    std::deque<Session> m_sessions;
    std::map<void*, std::pair<std::string, std::unique_ptr<char[]>>> m_memory;  // not freed yet
};

// Begins with fresh doubles and ends with the check of what was not freed or closed.
struct RecordedTest : testing::Test
{
    RecordedTest() { m_recorder.reset(); }
    ~RecordedTest() override { m_recorder.expectNothingLeft(); }

    CryptoRecorder& m_recorder = CryptoRecorder::s_instance;
};

// The same with the library started, which calls nothing for that.
struct StartedTest : RecordedTest
{
    StartedTest() { Arxium::initialize(false); }
    ~StartedTest() override { Arxium::terminate(); }
};

#endif
