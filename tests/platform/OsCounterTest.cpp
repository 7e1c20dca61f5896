#include "os/OsCounter.h"

#include <sched.h>

#include <array>
#include <cstring>

#include <gtest/gtest.h>

namespace
{
DWORD_PTR constexpr s_allOnes = ~DWORD_PTR{0};

// The processors of the calling thread as a kernel for 1024 processors keeps them, in words of 64.
using Words = std::array<std::uint64_t, 16>;

struct Kernel
{
    Words m_set{};
    bool m_refusesToGet = false;
    bool m_refusesToSet = false;
} s_kernel;
}  // namespace

#pragma GCC visibility push(default)
extern "C" int sched_getaffinity(pid_t, std::size_t size, cpu_set_t* set) noexcept
{
    if (s_kernel.m_refusesToGet || size != sizeof s_kernel.m_set)
        return -1;
    std::memcpy(set, &s_kernel.m_set, sizeof s_kernel.m_set);
    return 0;
}

extern "C" int sched_setaffinity(pid_t task, std::size_t size, cpu_set_t const* set) noexcept
{
    if (s_kernel.m_refusesToSet || task != 0 || size != sizeof s_kernel.m_set)
        return -1;
    std::memcpy(&s_kernel.m_set, set, size);
    return 0;
}
#pragma GCC visibility pop

namespace
{
DWORD_PTR pin(DWORD_PTR mask)
{
    return SetThreadAffinityMask(GetCurrentThread(), mask);
}

struct SetRow
{
    char const* m_name;
    Words m_set;
    DWORD_PTR m_mask;  // that tells it
};
SetRow const s_sets[] = {
    {"TwoProcessors", {3}, 3},
    {"BeyondAMask", {5, 0, 0, 7}, s_allOnes},
    {"AllOfAMask", {s_allOnes}, s_allOnes},
    {"OnlyBeyondAMask", {0, 0, 0, 7}, s_allOnes},
};

TEST(OsCounter, RestoringBringsBackTheSetThatHeld)
{
    for (SetRow const& row : s_sets)
    {
        SCOPED_TRACE(row.m_name);
        s_kernel = {row.m_set};
        EXPECT_EQ(row.m_mask, pin(4));
        EXPECT_EQ(Words{4}, s_kernel.m_set);
        EXPECT_EQ(4u, pin(row.m_mask));
        EXPECT_EQ(row.m_set, s_kernel.m_set);
    }
}

TEST(OsCounter, PinsMayNest)
{
    s_kernel = {{5, 7}};
    DWORD_PTR const outer = pin(4);
    EXPECT_EQ(1u, pin(pin(1)));
    EXPECT_EQ(Words{4}, s_kernel.m_set);
    EXPECT_EQ(4u, pin(outer));
    EXPECT_EQ((Words{5, 7}), s_kernel.m_set);
}

TEST(OsCounter, ARefusedRestoreCostsThatReadingAlone)
{
    s_kernel = {{2}};
    DWORD_PTR const held = pin(1);
    s_kernel.m_refusesToSet = true;
    EXPECT_EQ(0u, pin(held));
    s_kernel = {{0xC}};  // the host repairs its thread
    EXPECT_EQ(0xCu, pin(2));
    EXPECT_EQ(2u, pin(0xC));
    EXPECT_EQ(Words{0xC}, s_kernel.m_set);
}

TEST(OsCounter, RefusedPinLeavesTheThread)
{
    for (bool Kernel::*const refusal : {&Kernel::m_refusesToGet, &Kernel::m_refusesToSet})
    {
        s_kernel = {{3}};
        s_kernel.*refusal = true;
        EXPECT_EQ(0u, pin(1));
        EXPECT_EQ(Words{3}, s_kernel.m_set);
    }
    s_kernel = {{3}};
    EXPECT_EQ(0u, pin(0));
    EXPECT_EQ(0u, SetThreadAffinityMask(GetCurrentProcess(), 1));
    EXPECT_EQ(Words{3}, s_kernel.m_set);
}

TEST(OsCounter, ProcessMaskHoldsTheFirstProcessors)
{
    DWORD_PTR process = 0, system = 0;
    s_kernel = {{3, 1}};
    EXPECT_NE(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
    EXPECT_EQ(3u, process);
    EXPECT_EQ(0, GetProcessAffinityMask(GetCurrentThread(), &process, &system));
    s_kernel.m_refusesToGet = true;
    EXPECT_EQ(0, GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
}

TEST(OsCounter, CounterRisesByNanoseconds)
{
    LARGE_INTEGER frequency, first, second;
    ASSERT_TRUE(QueryPerformanceFrequency(&frequency) && QueryPerformanceCounter(&first) &&
                QueryPerformanceCounter(&second));
    EXPECT_EQ(1000000000, frequency.QuadPart);
    EXPECT_LE(first.QuadPart, second.QuadPart);
}
}  // namespace
