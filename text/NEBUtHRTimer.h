// Measures elapsed time in nanoseconds by the high-resolution counter.
//
// Every reading is made on the one processor chosen by initialize: the calling thread is moved there for
// the length of the reading and then gets its own processors back. Nothing here raises; a timer that can't
// measure answers 0. initialize and terminate belong at the start and the end of the host, while no timer
// is in use. Between them any number of threads may use timers of their own; one timer serves one thread
// at a time.

#ifndef ARXIUM_TEXT_NEBUTHRTIMER_H
#define ARXIUM_TEXT_NEBUTHRTIMER_H

#include <cstdint>

#include "frame/ArxiumExport.h"

class ARXIUM_API NEBUtHRTimer
{
public:
    NEBUtHRTimer();
    virtual ~NEBUtHRTimer();

    // Chooses the lowest processor that the process may use and asks for the counter's frequency, from
    // scratch at each call. Where the system refuses one, timers answer 0 until a later call succeeds.
    static void initialize();
    // Timers answer 0 from here on.
    static void terminate();

    void start();
    // A stopped timer may be stopped again: its end moves on.
    void stop();
    // Nanoseconds from start to the last reading. take first takes that reading, which leaves the start as it
    // was. Without take, a timer that was started but not stopped gives a meaningless large number.
    std::uint64_t getElapsed(bool take);

private:
    static std::uint64_t m_threadAffinityMask;  // one bit, or 0 for readings without a move
    static std::uint64_t m_frequency;           // ticks a second; 0 while nothing can be measured
    static std::uint64_t m_adjustment;          // ticks taken off each difference

    std::uint64_t m_startTicks;
    std::uint64_t m_stopTicks;  // 0 for no reading since start
};

#endif
