#include "host/Progress.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include <unistd.h>

namespace
{
auto constexpr s_interval = std::chrono::milliseconds(200);
double constexpr s_mebibyte = 1 << 20;

// The bytes that this process has read or written so far; 0 where the system doesn't count them.
std::uint64_t readCounter(Progress::Watch watch)
{
    std::ifstream file("/proc/self/io");
    std::string const wanted = watch == Progress::Watch::bytesRead ? "rchar:" : "wchar:";
    std::string name;
    std::uint64_t value = 0;
    while (file >> name >> value)
        if (name == wanted)
            return value;
    return 0;
}
}  // namespace

Progress::Progress(std::vector<std::uint64_t> const& sizes, Watch watch)
    : m_watch(watch), m_before(readCounter(watch))
{
    std::uint64_t end = 0;
    for (std::uint64_t const size : sizes)
        m_ends.push_back(end += size);
    if (isatty(STDERR_FILENO) == 1)
        m_thread = std::thread(&Progress::run, this);
}

Progress::~Progress()
{
    if (!m_thread.joinable())
        return;
    {
        std::lock_guard<std::mutex> const guard(m_lock);
        m_done = true;
    }
    m_wake.notify_one();
    m_thread.join();
    std::fputs("\r\033[K", stderr);
}

void Progress::run()
{
    auto const start = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> guard(m_lock);
    while (!m_wake.wait_for(guard, s_interval, [this] { return m_done; }))
        show(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
}

void Progress::show(double seconds) const
{
    std::uint64_t const whole = m_ends.empty() ? 0 : m_ends.back();
    std::uint64_t const done = std::min(readCounter(m_watch) - m_before, whole);
    auto const files = std::upper_bound(m_ends.begin(), m_ends.end(), done) - m_ends.begin();
    std::fprintf(stderr, "\r%td of %zu files, %.1f of %.1f MiB, %.1f MiB/s\033[K", files, m_ends.size(),
                 static_cast<double>(done) / s_mebibyte, static_cast<double>(whole) / s_mebibyte,
                 static_cast<double>(done) / s_mebibyte / seconds);
}
