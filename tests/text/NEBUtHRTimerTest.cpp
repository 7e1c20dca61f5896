#include "text/NEBUtHRTimer.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "os/OsCounter.h"

namespace
{
using Numbers = std::vector<std::uint64_t>;

struct Machine
{
    DWORD_PTR m_processMask;
    BOOL m_hasMask;
    std::int64_t m_frequency;  // 0: refused
    std::int64_t m_ticks = 0;
    Numbers m_masks{};  // that a thread was given, and 7 for each reading of the counter
} s_machine;
}  // namespace

BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR*)
{
    *processMask = s_machine.m_processMask;
    return process == GetCurrentProcess() ? s_machine.m_hasMask : 0;
}

DWORD_PTR SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask)
{
    s_machine.m_masks.push_back(mask);
    return mask == 0 || thread != GetCurrentThread() ? 0 : 0xF0;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency)
{
    frequency->QuadPart = s_machine.m_frequency;
    return s_machine.m_frequency != 0;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* counter)
{
    s_machine.m_masks.push_back(7);
    counter->QuadPart = s_machine.m_ticks;
    return 0;  // looked at by nobody
}

namespace
{
// The mask that is set, ticks and nanoseconds.
std::tuple<Machine, DWORD_PTR, std::uint64_t, std::uint64_t> const s_cases[] = {
    {Machine{0xC, 1, 10000000}, 4, 18446744073, 1844674407300},
    {Machine{0xC, 1, 10000000}, 4, 18446744074, 1844674407400},
    {Machine{DWORD_PTR{1} << 40, 1, 7}, DWORD_PTR{1} << 40, 129127208514, 18446744073428571428u},
    {Machine{0xC, 1, 0}, 4, 5, 0},
    {Machine{0xC, 0, 10000000}, 0, 5, 0},
    {Machine{0, 1, 10000000}, 0, 5, 0}};

// Case by case without terminate: each initialize starts from scratch.
TEST(NEBUtHRTimer, PinsReadsRestoresAndCountsExactly)
{
    for (auto const& [machine, mask, ticks, nanoseconds] : s_cases)
    {
        NEBUtHRTimer timer;
        s_machine = machine;
        NEBUtHRTimer::initialize();
        s_machine.m_masks.clear();
        EXPECT_EQ(0u, timer.getElapsed(false));  // never started
        timer.start();
        s_machine.m_ticks = static_cast<std::int64_t>(ticks);
        EXPECT_EQ(nanoseconds, timer.getElapsed(true)) << ticks;
        timer.stop();
        s_machine.m_ticks = 0;  // not read any more
        EXPECT_EQ(nanoseconds, timer.getElapsed(false)) << ticks;
        DWORD_PTR const former = mask ? 0xF0 : 0;
        EXPECT_EQ((Numbers{mask, 7, former, mask, 7, former, mask, 7, former}), s_machine.m_masks);
    }
    s_machine = {0xC, 1, 1000, 5};
    NEBUtHRTimer::initialize();
    NEBUtHRTimer::terminate();
    s_machine.m_masks.clear();
    EXPECT_EQ(0u, NEBUtHRTimer().getElapsed(true));
    EXPECT_EQ((Numbers{0, 7, 0}), s_machine.m_masks);
}
}  // namespace
