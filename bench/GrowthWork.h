// Work of any size on each road, to show that neither time nor memory grows faster than its input.

#ifndef ARXIUM_BENCH_GROWTHWORK_H
#define ARXIUM_BENCH_GROWTHWORK_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>

// Prepares work of that size, in bytes or entries, and gives the work itself, which runs once.
using GrowthWork = std::function<std::function<void()>(std::size_t size)>;

std::map<std::string, GrowthWork> const& worksByBytes();
std::map<std::string, GrowthWork> const& worksByEntries();

#endif
