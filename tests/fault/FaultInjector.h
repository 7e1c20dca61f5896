// Lets allocations and system calls of this process fail, one at a time and counted.
//
// The program's own malloc family and a seccomp filter see every call, also those that the C library and
// others make inside. Nothing fails unless the injector is armed. For one thread.

#ifndef ARXIUM_TESTS_FAULT_FAULTINJECTOR_H
#define ARXIUM_TESTS_FAULT_FAULTINJECTOR_H

#include <cstddef>

struct FaultPlan
{
    enum Kind
    {
        none,
        oneAllocation,     // the m_point-th
        allAllocations,    // the m_point-th and every later one
        systemCallFails,   // the m_point-th, with m_error
        systemCallIsShort  // the m_point-th; a read or write passes half of what it is asked for
    };
    static constexpr int s_killed = -1;  // in place of an error: the process ends before the call

    Kind m_kind = none;
    int m_error = 0;
    long m_point = 0;  // from 1
};

class FaultInjector
{
public:
    // The plan may lead to the end of the process. trace, of that size, gets the functions above each
    // failure.
    static void arm(FaultPlan const& plan, char* trace, std::size_t traceSize);
    // What is allocated while armed is watched until it is freed.
    static void resume();
    static void pause();
    static std::size_t liveAllocations();

    // From now on, for the rest of the process; needed for plans about system calls.
    static bool watchSystemCalls();
};

#endif
