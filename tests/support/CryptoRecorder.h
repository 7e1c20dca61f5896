// Test doubles of the crypto interface, the text services and the configuration.
//
// A program that links them calls them in place of the shared libraries' functions. They record what they are
// asked in order, can fail on the n-th call of a function, and know what has not come back.

#ifndef ARXIUM_TESTS_SUPPORT_CRYPTORECORDER_H
#define ARXIUM_TESTS_SUPPORT_CRYPTORECORDER_H

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

enum class Fault
{
    None,
    Details,      // a failed status and the details "reason"
    Status,       // a failed status alone
    NullSession,  // a good status, but nothing is opened
    Exception     // std::runtime_error "raised"; details are set before
};

class CryptoRecorder
{
public:
    static CryptoRecorder& get();
    void reset();

    // Lets one call of a function, counted from 1 and from now on, fail; of each function at most one.
    void failCall(std::string const& function, int call, Fault fault);
    // Whether that call was made.
    bool hasFailed(std::string const& function) { return m_faults[function].second == Fault::None; }
    // The calls since this was last asked: the function's name, then "S1" for the session, document or data.
    // Sessions and what is freed are named in the order in which, and as what, they were handed out.
    std::vector<std::string> takeCalls();
    // The same in one line: "SetInfo S1 info, Free details", without "KRY_" and "Crypto".
    std::string takeStory();
    // What was not given back, and calls that overlapped or came behind the end of their session.
    std::vector<std::string> problems();

    std::map<std::string, std::string> m_settings;  // of the configuration
    std::function<void()> m_duringProtect;          // run inside each KRY_ProtectData, which returns "<DATA>"

    // For the doubles themselves.
    struct Session
    {
        std::string m_name;
        std::string m_infoDoc;
        std::atomic<bool> m_busy{false};
        bool m_closeAsked = false;  // enough for us: one that won't close is the interface's
        bool m_closed = false;
    };
    Fault record(std::string const& function, std::string const& arguments);
    std::int32_t answer(Fault fault, char** details);
    Session* open();
    std::string use(void* session);
    char* handOut(std::string const& bytes, char const* kind);
    std::string takeBack(void* memory);
    void complain(std::string const& problem);

private:
    std::mutex m_lock;
    std::vector<std::string> m_calls;
    std::vector<std::string> m_problems;
    std::map<std::string, int> m_counts;
    std::map<std::string, std::pair<int, Fault>> m_faults;  // by function: which call
    std::vector<std::unique_ptr<Session>> m_sessions;
    std::map<void*, std::string> m_memory;
};

// Starts with fresh doubles and ends by looking for what was not given back.
class RecordedTest : public testing::Test
{
protected:
    RecordedTest() { m_recorder.reset(); }
    ~RecordedTest() override { EXPECT_EQ(std::vector<std::string>(), m_recorder.problems()); }

    CryptoRecorder& m_recorder = CryptoRecorder::get();
};

#endif
