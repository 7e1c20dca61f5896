#include "NEBCore/I18NInitialize.h"

#include <atomic>

namespace
{
std::atomic<std::int32_t> s_starts{0};
}  // namespace

std::int32_t I18NInitialize()
{
    return ++s_starts;
}

void I18NTerminate()
{
    std::int32_t starts = s_starts;
    while (starts > 0 && !s_starts.compare_exchange_weak(starts, starts - 1))
        continue;
}
