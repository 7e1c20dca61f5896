// Measures elapsed time in nanoseconds by the high-resolution counter.
//
// Every reading is made on the one processor that initialize chooses: the calling thread moves there for the
// reading and then gets its own processors back. Time intervals of many microseconds: the move itself takes a
// few. Nothing here raises; a timer that can't measure returns 0.
//
// Call initialize and terminate at the start and the end of the host, while no timer is in use; Arxium does
// not call them. In between, any number of threads may use timers of their own. A timer serves one thread at
// a time.
//
// Example:
//     #include <iostream>
//     NEBUtHRTimer::initialize();  // once
//     NEBUtHRTimer timer;
//     timer.start();
//     timer.stop();
//     std::cout << timer.getElapsed(false) << " ns";

#ifndef ARXIUM_TEXT_NEBUTHRTIMER_H
#define ARXIUM_TEXT_NEBUTHRTIMER_H

#include <cstdint>

#include "frame/ArxiumExport.h"

class ARXIUM_API NEBUtHRTimer
{
public:
    NEBUtHRTimer();
    virtual ~NEBUtHRTimer();

    // Chooses the lowest processor that the process may use and reads the counter's frequency. Each call
    // starts from scratch. If the system refuses one of them, timers return 0 until a later call succeeds.
    static void initialize();
    // Makes timers return 0 until the next initialize.
    static void terminate();

    // Restarts the timer in any state.
    void start();
    // May be called again, which moves the end of the interval.
    void stop();
    // Nanoseconds between start and the last reading. With take, a reading is taken first, as by stop.
    // Without take, a timer that was started but not stopped returns a large number without meaning.
    std::uint64_t getElapsed(bool take);

private:
    static std::uint64_t m_threadAffinityMask;  // one bit; 0 means that threads are not moved
    static std::uint64_t m_frequency;           // ticks a second; 0 means that nothing can be measured
    static std::uint64_t m_adjustment;          // ticks subtracted from each interval

    std::uint64_t m_startTicks;
    std::uint64_t m_stopTicks;  // 0 means no reading since start
};

#endif
