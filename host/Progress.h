// Shows on standard error how far long work is, in a line that rewrites itself: files, bytes, rate. Shows
// nothing when standard error is no terminal.
//
// The library reports no progress, so a thread of the host watches the bytes that the process reads or
// writes.

#ifndef ARXHOST_PROGRESS_H
#define ARXHOST_PROGRESS_H

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

class Progress
{
public:
    enum class Watch
    {
        bytesRead,
        bytesWritten
    };

    // sizes: the bytes of each file, in the order of the work.
    Progress(std::vector<std::uint64_t> const& sizes, Watch watch);
    // Clears the line.
    ~Progress();

    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

private:
    void run();
    void show(double seconds) const;

    std::vector<std::uint64_t> m_ends;  // of each file in the whole, ascending
    Watch m_watch;
    std::uint64_t m_before;  // the counter's value at the start
    std::mutex m_lock;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;  // only where there is a terminal
};

#endif
