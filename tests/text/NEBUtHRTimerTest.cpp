#include "text/NEBUtHRTimer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "os/OsCounter.h"

namespace
{
struct Machine
{
    DWORD_PTR m_processMask = 0xC;
    bool m_hasMask = true;
    bool m_hasFrequency = true;
    std::uint64_t m_frequency = 10000000;
    std::uint64_t m_ticks = 0;
    std::vector<std::string> m_calls;
};

Machine s_machine;
DWORD_PTR constexpr s_threadMask = 0xF0;  // what the thread has before each pinning
}  // namespace

HANDLE GetCurrentProcess()
{
    return &s_machine;
}

HANDLE GetCurrentThread()
{
    return &s_machine.m_ticks;
}

BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR*)
{
    *processMask = s_machine.m_processMask;
    return s_machine.m_hasMask && process == GetCurrentProcess();
}

DWORD_PTR SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask)
{
    s_machine.m_calls.push_back("mask " + std::to_string(mask));
    return mask == 0 || thread != GetCurrentThread() ? 0 : s_threadMask;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency)
{
    frequency->QuadPart = static_cast<std::int64_t>(s_machine.m_frequency);
    return s_machine.m_hasFrequency;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* counter)
{
    s_machine.m_calls.push_back("read");
    counter->QuadPart = static_cast<std::int64_t>(s_machine.m_ticks);
    return 0;  // looked at by nobody
}

namespace
{
class NEBUtHRTimerTest : public testing::Test
{
protected:
    NEBUtHRTimerTest() { s_machine = Machine(); }
    ~NEBUtHRTimerTest() override { NEBUtHRTimer::terminate(); }

    std::vector<std::string> callsOfStart()
    {
        s_machine.m_calls.clear();
        m_timer.start();
        return s_machine.m_calls;
    }

    NEBUtHRTimer m_timer;
};

using Calls = std::vector<std::string>;
Calls const s_unpinned = {"mask 0", "read", "mask 0"};

TEST_F(NEBUtHRTimerTest, ReadsOnTheLowestProcessorAndGivesTheThreadItsOwnBack)
{
    for (int const bit : {0, 2, 40, 63})
    {
        s_machine.m_processMask = ~DWORD_PTR{0} << bit;
        NEBUtHRTimer::initialize();
        EXPECT_EQ((Calls{"mask " + std::to_string(DWORD_PTR{1} << bit), "read", "mask 240"}), callsOfStart());
    }
}

TEST_F(NEBUtHRTimerTest, GivesNothingUntilItCanMeasure)
{
    struct Case
    {
        bool m_hasMask;
        DWORD_PTR m_processMask;
        bool m_hasFrequency;
        Calls m_calls;
    };
    for (Case const& c : {Case{false, 0xC, true, s_unpinned}, Case{true, 0, true, s_unpinned},
                          Case{true, 0xC, false, {"mask 4", "read", "mask 240"}}})
    {
        s_machine = Machine();
        NEBUtHRTimer::initialize();  // the failing call after it starts from scratch
        s_machine.m_hasMask = c.m_hasMask;
        s_machine.m_processMask = c.m_processMask;
        s_machine.m_hasFrequency = c.m_hasFrequency;
        NEBUtHRTimer::initialize();
        EXPECT_EQ(c.m_calls, callsOfStart());
        s_machine.m_ticks = 500;
        EXPECT_EQ(0u, m_timer.getElapsed(true));
    }
    s_machine = Machine();
    NEBUtHRTimer::initialize();
    NEBUtHRTimer::terminate();
    EXPECT_EQ(s_unpinned, callsOfStart());
    EXPECT_EQ(0u, m_timer.getElapsed(true));
}

TEST_F(NEBUtHRTimerTest, TurnsTicksIntoNanosecondsOnBothSidesOfTheOverflow)
{
    struct Case
    {
        std::uint64_t m_frequency, m_ticks, m_nanoseconds;
    };
    for (Case const& c :
         {Case{10000000, 0, 0}, Case{10000000, 1, 100}, Case{3, 2, 666666666},
          Case{10000000, 18446744073, 1844674407300}, Case{10000000, 18446744074, 1844674407400},
          Case{18446744073, 18446744073, 1000000000}, Case{7, 129127208514, 18446744073428571428u},
          Case{1000000000, UINT64_MAX, UINT64_MAX}})
    {
        s_machine.m_frequency = c.m_frequency;
        s_machine.m_ticks = 0;
        NEBUtHRTimer::initialize();
        m_timer.start();
        s_machine.m_ticks = c.m_ticks;
        EXPECT_EQ(c.m_nanoseconds, m_timer.getElapsed(true)) << c.m_ticks << " at " << c.m_frequency;
    }
}

TEST_F(NEBUtHRTimerTest, KeepsItsStartAndMovesItsEndWithEachReading)
{
    NEBUtHRTimer::initialize();
    EXPECT_EQ(0u, m_timer.getElapsed(false));
    s_machine.m_ticks = 10;
    m_timer.start();
    s_machine.m_ticks = 13;
    m_timer.stop();
    s_machine.m_ticks = 20;
    EXPECT_EQ(300u, m_timer.getElapsed(false));
    EXPECT_EQ(1000u, m_timer.getElapsed(true));
    EXPECT_EQ(1000u, m_timer.getElapsed(false));
    m_timer.start();
    EXPECT_EQ(0u, m_timer.getElapsed(true));
}
}  // namespace
