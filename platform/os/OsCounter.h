// High-resolution counter and thread affinity under the names that the library calls on every platform, over
// the monotonic clock and the scheduler's processor sets.
//
// A mask names processor n by bit n, so it can't tell a set that reaches beyond processor 63. Such a set
// of a thread is handed out as a mask of all ones, and the thread gets back exactly the set that it had
// when that mask returns. Any thread may call; each changes only its own processors, and nothing here
// allocates or throws.

#ifndef OS_OSCOUNTER_H
#define OS_OSCOUNTER_H

#include <cstdint>

#define OS_COUNTER_API __attribute__((visibility("default")))

using BOOL = std::int32_t;  // 0 for failure
using HANDLE = void*;
using DWORD_PTR = std::uint64_t;

union LARGE_INTEGER
{
    std::int64_t QuadPart;
};

extern "C"
{
    // Fixed values that stand for the caller's own process and thread; there is nothing to close.
    OS_COUNTER_API HANDLE GetCurrentProcess();
    OS_COUNTER_API HANDLE GetCurrentThread();

    // The processors below 64 on which the process' first thread may run; only GetCurrentProcess is known.
    // systemMask gets the same: what the machine has beyond that isn't asked.
    OS_COUNTER_API BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR* systemMask);

    // Gives the calling thread the processors of mask and returns the mask that held before. 0, with the
    // thread as it was, for a mask of 0, for any handle but GetCurrentThread and where the system refuses.
    // The mask that the last call handed out undoes that call: the system isn't asked again what it set.
    OS_COUNTER_API DWORD_PTR SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask);

    // Ticks a second: nanoseconds.
    OS_COUNTER_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
    // The same on all processors, and never set back.
    OS_COUNTER_API BOOL QueryPerformanceCounter(LARGE_INTEGER* counter);
}

#endif
