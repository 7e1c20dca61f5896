// One reading of the timer, which is made on the process' lowest processor: with the thread bound there by
// the host, with it there but free to run anywhere, and with it bound elsewhere, so that it has to move both
// ways.

#include <benchmark/benchmark.h>

#include <sched.h>
#include <time.h>

#include "text/NEBUtHRTimer.h"

namespace
{
enum Placement
{
    boundThere,
    alreadyThere,
    movedEachTime
};

// The processors of the thread, given back at the end.
class Placed
{
public:
    explicit Placed(std::int64_t placement)
    {
        sched_getaffinity(0, sizeof m_all, &m_all);
        int first = 0;
        while (!CPU_ISSET(first, &m_all))
            ++first;
        CPU_ZERO(&m_first);
        CPU_SET(first, &m_first);
        cpu_set_t others = m_all;
        CPU_CLR(first, &others);
        m_isPossible = placement != movedEachTime || CPU_COUNT(&others) != 0;
        sched_setaffinity(0, sizeof m_first, placement == movedEachTime ? &others : &m_first);
        if (placement == alreadyThere)
            sched_setaffinity(0, sizeof m_all, &m_all);
    }
    ~Placed() { sched_setaffinity(0, sizeof m_all, &m_all); }
    Placed(Placed const&) = delete;
    Placed& operator=(Placed const&) = delete;

    cpu_set_t m_all;
    cpu_set_t m_first;
    bool m_isPossible;
};

void ours(benchmark::State& state)
{
    NEBUtHRTimer::initialize();
    Placed const placed(state.range(0));
    if (!placed.m_isPossible)
        state.SkipWithError("one processor only");
    NEBUtHRTimer timer;
    for (auto _ : state)
        timer.stop();
    NEBUtHRTimer::terminate();
}

// The system calls that can't be left out: the set that the thread has, and where it is another one the
// change and the change back.
void limitCalls(benchmark::State& state)
{
    Placed const placed(state.range(0));
    if (!placed.m_isPossible)
        state.SkipWithError("one processor only");
    for (auto _ : state)
    {
        cpu_set_t former;
        timespec now;
        sched_getaffinity(0, sizeof(unsigned long), &former);
        if (state.range(0) != boundThere)
            sched_setaffinity(0, sizeof(unsigned long), &placed.m_first);
        clock_gettime(CLOCK_MONOTONIC, &now);
        if (state.range(0) != boundThere)
            sched_setaffinity(0, sizeof(unsigned long), &former);
        benchmark::DoNotOptimize(now);
    }
}

BENCHMARK(ours)->Name("PinnedReading/ours")->ArgName("placement")->DenseRange(boundThere, movedEachTime);
BENCHMARK(limitCalls)
    ->Name("PinnedReading/limit-calls")
    ->ArgName("placement")
    ->DenseRange(boundThere, movedEachTime);
}  // namespace
