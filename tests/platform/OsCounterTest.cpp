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
#include <tuple>
#include <vector>

namespace
{
using Words = std::vector<unsigned long>;

// A machine with as many processors as its words have bits; the real one if it has none.
struct Kernel
{
    Words m_set;
    bool m_refusesGet = false, m_refusesSet = false;
    std::string m_calls;
} s_kernel;
}  // namespace

extern "C" int sched_getaffinity(pid_t task, std::size_t size, cpu_set_t* set) noexcept
{
    std::memset(set, 0, size);
    if (s_kernel.m_set.empty())
        return syscall(SYS_sched_getaffinity, task, size, set) < 0 ? -1 : 0;
    std::size_t const needed = s_kernel.m_set.size() * sizeof(unsigned long);
    errno = size < needed ? EINVAL : EPERM;
    if (size < needed || s_kernel.m_refusesGet)
        return -1;
    s_kernel.m_calls += 'g';
    std::memcpy(set, s_kernel.m_set.data(), needed);
    return 0;
}

extern "C" int sched_setaffinity(pid_t task, std::size_t size, cpu_set_t const* set) noexcept
{
    if (s_kernel.m_set.empty())
        return static_cast<int>(syscall(SYS_sched_setaffinity, task, size, set));
    s_kernel.m_calls += 's';
    if (s_kernel.m_refusesSet)
        return -1;
    std::fill(s_kernel.m_set.begin(), s_kernel.m_set.end(), 0);
    std::memcpy(s_kernel.m_set.data(), set, std::min(size, s_kernel.m_set.size() * sizeof(unsigned long)));
    return 0;
}

namespace
{
DWORD_PTR constexpr s_all = ~DWORD_PTR{0};
auto const pin = [](DWORD_PTR mask) { return SetThreadAffinityMask(GetCurrentThread(), mask); };

// What the layer remembers belongs to a thread: a new one starts without.
template <class Body>
void onNewThread(Words const& set, Body const& body)
{
    s_kernel = Kernel();
    s_kernel.m_set = set;
    std::thread(body).join();
}

TEST(OsCounterPin, GivesBackExactlyTheSetThatWasThere)
{
    // The set, a mask, what that replaces, and the calls of pinning and undoing it.
    std::tuple<Words, DWORD_PTR, DWORD_PTR, char const*> const rows[] = {
        {{0x3}, 1, 0x3, "gss"},
        {{0x4}, 4, 0x4, "g"},
        {{1, 0, 0, 0, 0, 0, 1}, 1, s_all, "gss"},
        {{0x3}, 0, 0, ""}};
    for (auto const& row : rows)
        onNewThread(std::get<0>(row),
                    [&row]
                    {
                        auto const& [set, mask, former, calls] = row;
                        Words pinned(set.size());
                        pinned[0] = mask;
                        for (int round = 0; round < 2; ++round)
                        {
                            s_kernel.m_calls.clear();
                            EXPECT_EQ(former, pin(mask));
                            EXPECT_EQ(mask == 0 ? set : pinned, s_kernel.m_set);
                            EXPECT_EQ(mask, pin(former));
                            EXPECT_EQ(set, s_kernel.m_set);
                            EXPECT_EQ(calls, s_kernel.m_calls);
                        }
                    });
}

TEST(OsCounterPin, UndoesAPinningInsideAnother)
{
    onNewThread({0x5, 0x7},
                []
                {
                    EXPECT_EQ(s_all, pin(4));
                    EXPECT_EQ(1u, pin(pin(1)));
                    EXPECT_EQ((Words{4, 0}), s_kernel.m_set);
                    EXPECT_EQ(4u, pin(s_all));
                    EXPECT_EQ((Words{0x5, 0x7}), s_kernel.m_set);
                    s_kernel.m_set = {s_all, 0};  // somebody else's doing: all ones now stand for that
                    EXPECT_EQ(1u, pin(pin(1)));
                    EXPECT_EQ((Words{s_all, 0}), s_kernel.m_set);
                });
}

TEST(OsCounterPin, LeavesTheThreadAloneWhereTheSystemRefuses)
{
    onNewThread({0x3, 0x1},
                []
                {
                    DWORD_PTR process = 0, system = 0, former = 0;
                    EXPECT_NE(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
                    EXPECT_EQ(3u, process);
                    for (DWORD_PTR const mask : {DWORD_PTR{1}, s_all})  // the second undoes the first
                    {
                        s_kernel.m_refusesSet = true;
                        EXPECT_EQ(0u, pin(mask));
                        s_kernel.m_refusesSet = false;
                        EXPECT_NE(0u, former = pin(mask));
                    }
                    EXPECT_EQ(1u, former);
                    s_kernel.m_refusesGet = true;
                    EXPECT_EQ(0u, pin(1) + SetThreadAffinityMask(GetCurrentProcess(), 1));
                    EXPECT_EQ(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
                    EXPECT_EQ((Words{0x3, 0x1}), s_kernel.m_set);
                });
    onNewThread(Words(1024, 1), [] { EXPECT_EQ(0u, pin(1)); });  // more processors than any kernel has
}

TEST(OsCounterPin, MovesARealThreadThereAndBack)
{
    onNewThread({},
                []
                {
                    cpu_set_t before, after;
                    ASSERT_EQ(0, sched_getaffinity(0, sizeof before, &before));
                    auto const mask = DWORD_PTR{1} << sched_getcpu() % 64;
                    EXPECT_EQ(mask, pin(pin(mask)));
                    ASSERT_EQ(0, sched_getaffinity(0, sizeof after, &after));
                    EXPECT_TRUE(CPU_EQUAL(&before, &after));
                    LARGE_INTEGER first, second;
                    EXPECT_TRUE(QueryPerformanceCounter(&first) && QueryPerformanceCounter(&second));
                    EXPECT_LE(first.QuadPart, second.QuadPart);
                });
}
}  // namespace
