#include "text/NEBUtHRTimer.h"

#include "os/OsCounter.h"

namespace
{
std::uint64_t constexpr s_nanoseconds = 1000000000;                    // in a second
std::uint64_t constexpr s_longestDirect = UINT64_MAX / s_nanoseconds;  // ticks

// No result is checked: a failure costs only the pinning of this reading, and a mask of 0 changes nothing.
std::uint64_t readPinned(std::uint64_t mask)
{
    DWORD_PTR const former = SetThreadAffinityMask(GetCurrentThread(), mask);
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    SetThreadAffinityMask(GetCurrentThread(), former);
    return static_cast<std::uint64_t>(counter.QuadPart);
}
}  // namespace

std::uint64_t NEBUtHRTimer::m_threadAffinityMask = 0;
std::uint64_t NEBUtHRTimer::m_frequency = 0;
std::uint64_t NEBUtHRTimer::m_adjustment = 0;

NEBUtHRTimer::NEBUtHRTimer() : m_startTicks(0), m_stopTicks(0) {}

NEBUtHRTimer::~NEBUtHRTimer() = default;

void NEBUtHRTimer::initialize()
{
    terminate();
    DWORD_PTR processMask = 0;
    DWORD_PTR systemMask = 0;
    if (!GetProcessAffinityMask(GetCurrentProcess(), &processMask, &systemMask) || processMask == 0)
        return;
    m_threadAffinityMask = processMask & (~processMask + 1);  // its lowest bit

    LARGE_INTEGER frequency{};
    if (!QueryPerformanceFrequency(&frequency))
        return;
    m_frequency = static_cast<std::uint64_t>(frequency.QuadPart);

    // Warms up: the first readings on a processor are slow. Their difference is not used as m_adjustment,
    // because a shorter interval less that difference would wrap to a huge one.
    readPinned(m_threadAffinityMask);
    readPinned(m_threadAffinityMask);
}

void NEBUtHRTimer::terminate()
{
    m_frequency = 0;
    m_adjustment = 0;
    m_threadAffinityMask = 0;
}

void NEBUtHRTimer::start()
{
    m_stopTicks = 0;
    m_startTicks = readPinned(m_threadAffinityMask);
}

void NEBUtHRTimer::stop()
{
    m_stopTicks = readPinned(m_threadAffinityMask);
}

std::uint64_t NEBUtHRTimer::getElapsed(bool take)
{
    if (take)
        stop();
    if (m_frequency == 0)
        return 0;

    std::uint64_t const ticks = m_stopTicks - m_startTicks - m_adjustment;
    if (ticks <= s_longestDirect)
        return ticks * s_nanoseconds / m_frequency;
    return ticks % m_frequency * s_nanoseconds / m_frequency + ticks / m_frequency * s_nanoseconds;
}
