#include "text/NEBUtHRTimer.h"

#include <string>

#include "os/OsCounter.h"
#include "support/Rows.h"

namespace
{
struct Machine
{
    DWORD_PTR m_processMask;
    BOOL m_hasMask;
    std::int64_t m_frequency;  // 0: refused
    std::int64_t m_ticks = 0;
    std::string m_calls = "";  // "pin MASK" and "read"
} s_machine;
}  // namespace

BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR*)
{
    *processMask = s_machine.m_processMask;
    return process == GetCurrentProcess() ? s_machine.m_hasMask : 0;
}

DWORD_PTR SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask)
{
    s_machine.m_calls += "pin " + std::to_string(mask) + ", ";
    return mask == 0 || thread != GetCurrentThread() ? 0 : 90;  // what held before
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency)
{
    frequency->QuadPart = s_machine.m_frequency;
    return s_machine.m_frequency != 0;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* counter)
{
    s_machine.m_calls += "read, ";
    counter->QuadPart = s_machine.m_ticks;
    return 0;  // not to be checked
}

namespace
{
struct TimerRow
{
    char const* m_name;
    Machine m_machine;
    char const* m_reading;
    std::int64_t m_ticks;
    std::uint64_t m_nanoseconds;
};
using NEBUtHRTimerOn = testing::TestWithParam<TimerRow>;

TEST_P(NEBUtHRTimerOn, CountsExactlyByPinnedReadings)
{
    s_machine = {1, 1, 1000};
    NEBUtHRTimer::initialize();  // of which the next one must keep nothing
    s_machine = GetParam().m_machine;
    NEBUtHRTimer::initialize();
    NEBUtHRTimer timer;
    EXPECT_EQ(0u, timer.getElapsed(false));  // never started
    s_machine.m_calls.clear();
    timer.start();
    EXPECT_EQ(GetParam().m_reading, s_machine.m_calls);
    s_machine.m_ticks = GetParam().m_ticks;
    timer.stop();
    s_machine.m_ticks = 0;
    EXPECT_EQ(GetParam().m_nanoseconds, timer.getElapsed(false));
    EXPECT_EQ(0u, timer.getElapsed(true));
}

TimerRow const s_rows[] = {
    {"ShortestSplit", {0xC, 1, 10000000}, "pin 4, read, pin 90, ", 18446744074, 1844674407400},
    {"HighMask", {1ull << 33, 1, 7}, "pin 8589934592, read, pin 90, ", 129127208514, 18446744073428571428u},
    {"NoFrequency", {0xC, 1, 0}, "pin 4, read, pin 90, ", 5, 0},
    {"NoMask", {0xC, 0, 10000000}, "pin 0, read, pin 0, ", 5, 0},
    {"EmptyMask", {0, 1, 10000000}, "pin 0, read, pin 0, ", 5, 0},
};
INSTANTIATE_TEST_SUITE_P(Machines, NEBUtHRTimerOn, testing::ValuesIn(s_rows), RowName());
}  // namespace
