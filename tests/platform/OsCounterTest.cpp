#include "os/OsCounter.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace
{
using Words = std::vector<unsigned long>;

// A machine with as many processors as its words have bits, and the calls that it answered. Without words it
// is the real one.
struct Kernel
{
    Words m_set;
    bool m_refusesGet = false;
    bool m_refusesSet = false;
    std::string m_calls;
};

Kernel s_kernel;

int fail(int error)
{
    errno = error;
    return -1;
}
}  // namespace

extern "C" int sched_getaffinity(pid_t task, std::size_t size, cpu_set_t* set) noexcept
{
    s_kernel.m_calls += 'g';
    std::memset(set, 0, size);
    if (s_kernel.m_set.empty())
        return syscall(SYS_sched_getaffinity, task, size, set) < 0 ? -1 : 0;
    std::size_t const needed = s_kernel.m_set.size() * sizeof(unsigned long);
    if (s_kernel.m_refusesGet || size < needed)
    {
        s_kernel.m_calls.pop_back();
        return fail(s_kernel.m_refusesGet ? EPERM : EINVAL);
    }
    std::memcpy(set, s_kernel.m_set.data(), needed);
    return 0;
}

extern "C" int sched_setaffinity(pid_t task, std::size_t size, cpu_set_t const* set) noexcept
{
    s_kernel.m_calls += 's';
    if (s_kernel.m_set.empty())
        return static_cast<int>(syscall(SYS_sched_setaffinity, task, size, set));
    if (s_kernel.m_refusesSet)
        return fail(EINVAL);
    std::fill(s_kernel.m_set.begin(), s_kernel.m_set.end(), 0);
    std::memcpy(s_kernel.m_set.data(), set, std::min(size, s_kernel.m_set.size() * sizeof(unsigned long)));
    return 0;
}

namespace
{
DWORD_PTR constexpr s_all = ~DWORD_PTR{0};

DWORD_PTR pin(DWORD_PTR mask)
{
    return SetThreadAffinityMask(GetCurrentThread(), mask);
}

// What the layer keeps, it keeps for each thread: a new one starts without.
template <class Body>
void onNewThread(Words const& set, Body const& body)
{
    s_kernel = Kernel();
    s_kernel.m_set = set;
    std::thread(body).join();
    s_kernel = Kernel();
}

struct PinCase
{
    char const* m_name;
    Words m_set;
    DWORD_PTR m_mask;
    DWORD_PTR m_former;
    char const* m_calls;  // of pinning and undoing it
};

PinCase const s_pinCases[] = {
    {"Narrow", {0x3}, 1, 0x3, "gss"},
    {"AlreadyThere", {0x4}, 4, 0x4, "g"},
    {"ThreadKeptElsewhere", {0x2}, 1, 0x2, "gss"},
    {"SixtyFour", {s_all}, 1, s_all, "gss"},
    {"Hundreds", {s_all, s_all, s_all, 0xF}, 1, s_all, "gss"},
    {"OnlyBehindTheMask", {0, 0, 0, 0x10}, 1, s_all, "gss"},
    {"WideWithThatOneProcessor", {1, 0, 0, 0, 0, 0, 1}, 1, s_all, "gss"},
    {"NoMask", {0x3}, 0, 0, ""},
};

TEST(OsCounterPin, GivesBackExactlyTheSetThatWasThere)
{
    for (PinCase const& c : s_pinCases)
        onNewThread(c.m_set,
                    [&c]
                    {
                        Words pinned(c.m_set.size());
                        pinned[0] = c.m_mask;
                        for (int round = 0; round < 2; ++round)
                        {
                            s_kernel.m_calls.clear();
                            EXPECT_EQ(c.m_former, pin(c.m_mask)) << c.m_name;
                            EXPECT_EQ(c.m_mask == 0 ? c.m_set : pinned, s_kernel.m_set) << c.m_name;
                            EXPECT_EQ(c.m_mask, pin(c.m_former)) << c.m_name;
                            EXPECT_EQ(c.m_set, s_kernel.m_set) << c.m_name;
                            EXPECT_EQ(c.m_calls, s_kernel.m_calls) << c.m_name;
                        }
                    });
}

TEST(OsCounterPin, UndoesAPinningInsideAnother)
{
    Words const wide = {0x5, 0x7};
    onNewThread(wide,
                [&wide]
                {
                    EXPECT_EQ(s_all, pin(4));
                    EXPECT_EQ(4u, pin(1));
                    EXPECT_EQ(1u, pin(4));
                    EXPECT_EQ((Words{4, 0}), s_kernel.m_set);
                    EXPECT_EQ(4u, pin(s_all));
                    EXPECT_EQ(wide, s_kernel.m_set);
                });
}

TEST(OsCounterPin, TakesAllOnesForTheSetThatTheyLastStoodFor)
{
    onNewThread({0x5, 0x7},
                []
                {
                    EXPECT_EQ(1u, pin(pin(1)));
                    s_kernel.m_set = {s_all, 0};  // somebody else's doing
                    EXPECT_EQ(s_all, pin(1));
                    pin(s_all);
                    EXPECT_EQ((Words{s_all, 0}), s_kernel.m_set);
                });
}

TEST(OsCounterPin, LeavesTheThreadAloneWhereTheSystemRefuses)
{
    Words const set = {0x3, 0x1};
    onNewThread(set,
                [&set]
                {
                    s_kernel.m_refusesSet = true;
                    EXPECT_EQ(0u, pin(1));
                    EXPECT_EQ(0u, pin(0));
                    s_kernel.m_refusesGet = true;
                    s_kernel.m_refusesSet = false;
                    EXPECT_EQ(0u, pin(1));
                    DWORD_PTR process = 7, system = 7;
                    EXPECT_EQ(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
                    EXPECT_EQ(0u, SetThreadAffinityMask(GetCurrentProcess(), 1));
                    EXPECT_EQ(set, s_kernel.m_set);
                });
    onNewThread(Words(1024, 1), [] { EXPECT_EQ(0u, pin(1)); });  // more processors than any kernel has
}

TEST(OsCounterPin, RestoresAgainAfterARefusedRestore)
{
    onNewThread({0x3},
                []
                {
                    DWORD_PTR const former = pin(1);
                    s_kernel.m_refusesSet = true;
                    EXPECT_EQ(0u, pin(former));
                    s_kernel.m_refusesSet = false;
                    EXPECT_EQ(1u, pin(former));
                    EXPECT_EQ(Words{0x3}, s_kernel.m_set);
                });
}

TEST(OsCounterProcess, NamesTheProcessorsBelowSixtyFour)
{
    onNewThread({0x6, 0x1},
                []
                {
                    DWORD_PTR process = 0, system = 0;
                    EXPECT_NE(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
                    EXPECT_EQ(6u, process);
                });
}

TEST(OsCounterPin, MovesARealThreadThereAndBack)
{
    onNewThread({},
                []
                {
                    cpu_set_t before, after;
                    ASSERT_EQ(0, sched_getaffinity(0, sizeof before, &before));
                    for (int cpu = 0; cpu < 64; ++cpu)
                        if (CPU_ISSET(cpu, &before))
                        {
                            DWORD_PTR const former = pin(DWORD_PTR{1} << cpu);
                            EXPECT_EQ(cpu, sched_getcpu());
                            EXPECT_EQ(DWORD_PTR{1} << cpu, pin(former));
                            ASSERT_EQ(0, sched_getaffinity(0, sizeof after, &after));
                            EXPECT_TRUE(CPU_EQUAL(&before, &after));
                        }
                });
}

TEST(OsCounterReading, NeverGoesBack)
{
    LARGE_INTEGER frequency, first, second;
    ASSERT_NE(0, QueryPerformanceFrequency(&frequency));
    ASSERT_NE(0, QueryPerformanceCounter(&first));
    ASSERT_NE(0, QueryPerformanceCounter(&second));
    EXPECT_EQ(1000000000, frequency.QuadPart);
    EXPECT_LE(first.QuadPart, second.QuadPart);
}
}  // namespace
