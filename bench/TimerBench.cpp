// One reading of the timer by a thread that may run anywhere and is there already.

#include <benchmark/benchmark.h>

#include <sched.h>
#include <time.h>

#include "text/NEBUtHRTimer.h"

namespace
{
void ours(benchmark::State& state)
{
    NEBUtHRTimer::initialize();
    NEBUtHRTimer timer;
    for (auto _ : state)
        timer.stop();
    NEBUtHRTimer::terminate();
}

// The system calls that can't be left out: the set of the thread, the change to the first processor and back.
void limitCalls(benchmark::State& state)
{
    cpu_set_t first;
    CPU_ZERO(&first);
    CPU_SET(0, &first);
    for (auto _ : state)
    {
        cpu_set_t former;
        timespec now;
        sched_getaffinity(0, sizeof(unsigned long), &former);
        sched_setaffinity(0, sizeof(unsigned long), &first);
        clock_gettime(CLOCK_MONOTONIC, &now);
        sched_setaffinity(0, sizeof(unsigned long), &former);
        benchmark::DoNotOptimize(now);
    }
}

BENCHMARK(ours)->Name("PinnedReading/ours");
BENCHMARK(limitCalls)->Name("PinnedReading/limit-calls");
}  // namespace
