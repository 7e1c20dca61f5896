// Shows on standard error how far long work is, in a line that rewrites itself. Shows nothing, and costs
// nothing, where standard error is no terminal.

#ifndef ARXHOST_PROGRESS_H
#define ARXHOST_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>

class Progress
{
public:
    Progress();
    // Clears the line.
    ~Progress();

    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    void addFile() { ++m_files; }
    void addBytes(std::size_t count);

private:
    using Clock = std::chrono::steady_clock;

    bool m_isShown;
    Clock::time_point m_start;
    Clock::time_point m_next;  // when the line is written again
    std::uint64_t m_files = 0;
    std::uint64_t m_bytes = 0;
};

#endif
