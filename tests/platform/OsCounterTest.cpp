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

// A machine with as many processors as its words have bits; the real one if it has none.
struct Kernel
{
    Words m_set;
    char m_refused = '\0';  // of the calls below
    std::string m_calls;    // g that worked, s
} s_kernel;
std::size_t s_readSize = 0;  // of the last set that was read
}  // namespace

extern "C" int sched_getaffinity(pid_t task, std::size_t size, cpu_set_t* set) noexcept
{
    std::memset(set, 0, size);
    if (s_kernel.m_set.empty())
        return syscall(SYS_sched_getaffinity, task, size, set) < 0 ? -1 : 0;
    std::size_t const needed = s_kernel.m_set.size() * sizeof(unsigned long);
    errno = size < needed ? EINVAL : EPERM;
    if (size < needed || s_kernel.m_refused == 'g')
        return -1;
    s_kernel.m_calls += 'g';
    s_readSize = size;
    std::memcpy(set, s_kernel.m_set.data(), needed);
    return 0;
}

extern "C" int sched_setaffinity(pid_t task, std::size_t size, cpu_set_t const* set) noexcept
{
    if (s_kernel.m_set.empty())
        return static_cast<int>(syscall(SYS_sched_setaffinity, task, size, set));
    bool const isSound = task == 0 && (size == sizeof(unsigned long) || size == s_readSize);
    s_kernel.m_calls += isSound ? 's' : '?';
    if (s_kernel.m_refused == 's')
        return -1;
    std::fill(s_kernel.m_set.begin(), s_kernel.m_set.end(), 0);
    std::memcpy(s_kernel.m_set.data(), set, std::min(size, s_kernel.m_set.size() * sizeof(unsigned long)));
    return 0;
}

namespace
{
DWORD_PTR constexpr s_all = ~DWORD_PTR{0};
auto const pin = [](DWORD_PTR mask) { return SetThreadAffinityMask(GetCurrentThread(), mask); };

struct Step
{
    DWORD_PTR m_mask, m_former;
    Words m_set;          // behind it; of mask 0, before it too
    char const* m_calls;  // made by it
    char m_refused = '\0';
};

std::vector<Step> const s_rows[] = {
    {{0, 0, {3}, ""}, {1, 3, {1}, "gs"}, {3, 1, {3}, "s"}, {1, 3, {1}, "gs"}, {3, 1, {3}, "s"}},
    {{0, 0, {4}, ""}, {4, 4, {4}, "g"}, {4, 4, {4}, ""}, {4, 4, {4}, "g"}},
    // More processors than a mask has bits, and one pinning inside another.
    {{0, 0, {5, 0, 0, 0, 7}, ""},
     {4, s_all, {4, 0, 0, 0, 0}, "gs"},
     {1, 4, {1, 0, 0, 0, 0}, "gs"},
     {4, 1, {4, 0, 0, 0, 0}, "s"},
     {s_all, 4, {5, 0, 0, 0, 7}, "gs"},
     {0, 0, {s_all, 0}, ""},  // somebody else's doing: all ones now stand for that
     {1, s_all, {1, 0}, "gs"},
     {s_all, 1, {s_all, 0}, "s"}},
    // The system refuses to set, then to get; more processors than any kernel has.
    {{0, 0, {3, 1}, ""},
     {1, 0, {3, 1}, "gs", 's'},
     {1, s_all, {1, 0}, "gs"},
     {s_all, 0, {1, 0}, "s", 's'},
     {s_all, 1, {3, 1}, "s"},
     {1, 0, {3, 1}, "", 'g'}},
    {{0, 0, Words(1024, 1), ""}, {1, 0, Words(1024, 1), ""}},
};

TEST(OsCounterPin, GivesBackExactlyTheSetThatWasThere)
{
    auto const play = [](std::vector<Step> const& row)
    {
        for (Step const& step : row)
        {
            s_kernel = {step.m_mask == 0 ? step.m_set : s_kernel.m_set, step.m_refused, ""};
            EXPECT_EQ(step.m_former, pin(step.m_mask));
            EXPECT_EQ(step.m_set, s_kernel.m_set);
            EXPECT_EQ(step.m_calls, s_kernel.m_calls);
        }
    };
    for (auto const& row : s_rows)  // on a new thread each: what the layer remembers belongs to a thread
        std::thread(play, row).join();
}

TEST(OsCounterPin, TellsTheProcessorsOfTheProcess)
{
    DWORD_PTR process = 0, system = 0;
    s_kernel = {{3, 1}, '\0', ""};
    EXPECT_NE(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
    EXPECT_EQ(3u, process);
    EXPECT_EQ(0u, SetThreadAffinityMask(GetCurrentProcess(), 1));
    s_kernel.m_refused = 'g';
    EXPECT_EQ(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
}

TEST(OsCounterPin, MovesARealThreadThereAndBack)
{
    s_kernel = Kernel();
    cpu_set_t before, after;
    ASSERT_EQ(0, sched_getaffinity(0, sizeof before, &before));
    auto const mask = DWORD_PTR{1} << sched_getcpu() % 64;
    EXPECT_EQ(mask, pin(pin(mask)));
    ASSERT_EQ(0, sched_getaffinity(0, sizeof after, &after));
    EXPECT_TRUE(CPU_EQUAL(&before, &after));
    LARGE_INTEGER first, second;
    EXPECT_TRUE(QueryPerformanceCounter(&first) && QueryPerformanceCounter(&second));
    EXPECT_LE(first.QuadPart, second.QuadPart);
}
}  // namespace
