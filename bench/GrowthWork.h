// Work of any size on each hot path, to show that neither time nor memory grows faster than its input.

#ifndef ARXIUM_BENCH_GROWTHWORK_H
#define ARXIUM_BENCH_GROWTHWORK_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>

struct GrowthWork
{
    bool m_isByBytes;  // or by entries
    // Prepares work of that size and returns the work itself, which runs once.
    std::function<std::function<void()>(std::size_t size)> m_prepare;
};

std::map<std::string, GrowthWork> const& growthWorks();

#endif
