// Measures elapsed time in nanoseconds by the high-resolution counter.
//
// For each reading the calling thread moves to the one processor that initialize chooses, and then gets its
// own processors back. The move takes a few microseconds, so time longer intervals. Nothing here raises.
//
// Call initialize and terminate at the start and the end of the host, while no timer is in use; Arxium does
// not. In between, any number of threads may use timers, each timer one thread at a time.
//
// Example:
//     #include <iostream>
//     NEBUtHRTimer::initialize();  // once
//     NEBUtHRTimer timer;
//     timer.start();
//     std::cout << timer.getElapsed(true) << " ns";

#ifndef ARXIUM_TEXT_NEBUTHRTIMER_H
#define ARXIUM_TEXT_NEBUTHRTIMER_H

#include <cstdint>

#include "frame/ArxiumExport.h"

class ARXIUM_API NEBUtHRTimer
{
public:
    NEBUtHRTimer();
    virtual ~NEBUtHRTimer();

    // Chooses the lowest processor that the process may use and reads the counter's frequency, each time from
    // scratch. If the system refuses either, timers return 0 until a later call succeeds.
    static void initialize();
    // Makes timers return 0 until the next initialize.
    static void terminate();

    // Restarts the timer in any state.
    void start();
    // Called again, it moves the end of the interval.
    void stop();
    // Nanoseconds from start to the last stop; with take, it stops first. A timer that was started and not
    // stopped returns a large number without meaning.
    std::uint64_t getElapsed(bool take);

private:
    static std::uint64_t m_threadAffinityMask;  // one bit; 0 means that threads are not moved
    static std::uint64_t m_frequency;           // ticks a second; 0 means that nothing can be measured
    static std::uint64_t m_adjustment;          // ticks subtracted from each interval

    std::uint64_t m_startTicks;
    std::uint64_t m_stopTicks;  // 0 means no reading since start
};

#endif
