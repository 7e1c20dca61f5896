#include "os/OsCounter.h"

#include <sched.h>
#include <time.h>
#include <unistd.h>

#include <cstring>

namespace
{
std::int64_t constexpr s_ticksPerSecond = 1000000000;
DWORD_PTR constexpr s_allOnes = ~DWORD_PTR{0};

// What a mask of all ones stands for on this thread. The model places it in the thread's own block:
// elsewhere, the first use in a library that was loaded later would allocate.
[[gnu::tls_model("initial-exec")]] thread_local cpu_set_t s_wideSet;

// The first bytes of a set are its mask.
static_assert(sizeof(unsigned long) == sizeof(DWORD_PTR) || __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

DWORD_PTR toMask(cpu_set_t const& set)
{
    DWORD_PTR mask;
    std::memcpy(&mask, &set, sizeof mask);
    return CPU_COUNT(&set) == __builtin_popcountll(mask) ? mask : s_allOnes;
}

cpu_set_t toSet(DWORD_PTR mask)
{
    if (mask == s_allOnes && CPU_COUNT(&s_wideSet) != 0)
        return s_wideSet;
    cpu_set_t set{};
    std::memcpy(&set, &mask, sizeof mask);
    return set;
}
}  // namespace

HANDLE GetCurrentProcess()
{
    return reinterpret_cast<HANDLE>(std::intptr_t{-1});
}

HANDLE GetCurrentThread()
{
    return reinterpret_cast<HANDLE>(std::intptr_t{-2});
}

BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR* systemMask)
{
    cpu_set_t set;
    if (process != GetCurrentProcess() || sched_getaffinity(getpid(), sizeof set, &set) != 0)
        return 0;
    std::memcpy(processMask, &set, sizeof *processMask);
    *systemMask = *processMask;
    return 1;
}

DWORD_PTR SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask)
{
    cpu_set_t former;
    if (mask == 0 || thread != GetCurrentThread() || sched_getaffinity(0, sizeof former, &former) != 0)
        return 0;
    cpu_set_t const wanted = toSet(mask);
    if (!CPU_EQUAL(&wanted, &former) && sched_setaffinity(0, sizeof wanted, &wanted) != 0)
        return 0;
    DWORD_PTR const formerMask = toMask(former);
    if (formerMask == s_allOnes)
        s_wideSet = former;
    return formerMask;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency)
{
    frequency->QuadPart = s_ticksPerSecond;
    return 1;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* counter)
{
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0)
        return 0;
    counter->QuadPart = now.tv_sec * s_ticksPerSecond + now.tv_nsec;
    return 1;
}
