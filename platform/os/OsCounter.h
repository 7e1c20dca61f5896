// High-resolution counter and thread affinity under the names that the library calls on every platform.
//
// A mask names processor n by bit n, so it can't express a set with processors above 63. A mask of all ones
// stands for such a set: the one that the calling thread was last told of by that mask. Any thread may call;
// each changes only its own processors. Nothing here allocates, takes a lock or raises.

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
    // Fixed values for the caller's own process and thread; nothing has to be closed.
    OS_COUNTER_API HANDLE GetCurrentProcess();
    OS_COUNTER_API HANDLE GetCurrentThread();

    // Writes the processors below 64 on which the process's first thread may run, to both masks. Returns 0
    // for any handle except GetCurrentProcess, and if the system refuses.
    OS_COUNTER_API BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR* systemMask);

    // Binds the calling thread to the processors of mask and returns the mask that held before. Returns 0 and
    // leaves the thread as it is for a mask of 0, for any handle except GetCurrentThread, if the system
    // refuses, and on machines with more than 1024 processors.
    OS_COUNTER_API DWORD_PTR SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask);

    // Writes the ticks per second, 10^9, and returns 1.
    OS_COUNTER_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
    // Writes nanoseconds of the monotonic clock: the same on all processors, and never set back. Returns 0 on
    // failure.
    OS_COUNTER_API BOOL QueryPerformanceCounter(LARGE_INTEGER* counter);
}

#endif
