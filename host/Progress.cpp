#include "Progress.h"

#include <cinttypes>
#include <cstdio>

#include <unistd.h>

namespace
{
auto constexpr s_interval = std::chrono::milliseconds(200);
double constexpr s_mebibyte = 1 << 20;
}  // namespace

Progress::Progress()
    : m_isShown(isatty(STDERR_FILENO) == 1), m_start(Clock::now()), m_next(m_start + s_interval)
{
}

Progress::~Progress()
{
    if (m_isShown)
        std::fputs("\r\033[K", stderr);
}

void Progress::addBytes(std::size_t count)
{
    m_bytes += count;
    if (!m_isShown || Clock::now() < m_next)
        return;
    m_next = Clock::now() + s_interval;
    double const seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    double const mebibytes = static_cast<double>(m_bytes) / s_mebibyte;
    std::fprintf(stderr, "\r%" PRIu64 " files, %.1f MiB, %.1f MiB/s\033[K", m_files, mebibytes,
                 mebibytes / seconds);
}
