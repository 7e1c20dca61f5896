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

using FaultTrace = char[4000];  // the functions above each failure; empty if there was none

class FaultInjector
{
public:
    // The plan may lead to the end of the process. Plans about system calls hold for the rest of the process;
    // false if it doesn't let them be watched.
    static bool prepare(FaultPlan const& plan, FaultTrace& trace);
    // What is allocated while armed is watched until it is freed.
    static void arm(bool armed);
    static std::size_t liveAllocations();
};

#endif
