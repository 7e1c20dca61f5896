// Benchmarks of whole programs, each run in a process of its own.

#ifndef ARXIUM_BENCH_BENCHPROCESS_H
#define ARXIUM_BENCH_BENCHPROCESS_H

#include <functional>
#include <string>
#include <vector>

namespace benchmark
{
class State;
}

// The first word is a program, found in PATH unless it is a path; it must end with 0. Returns the
// processor time in seconds: what it prints, or what it used if it prints nothing.
double runProcess(std::vector<std::string> const& words);

// Each iteration is a run of the program, between two calls of prepare. A program that is not installed is
// left out.
void runTimed(
    benchmark::State& state, std::vector<std::string> const& words,
    std::function<void()> const& prepare = [] {});

// arxium_bench_worker, which does one piece of work and prints its processor time.
std::string workerPath();

#endif
