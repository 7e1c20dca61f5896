// Counts and logs requests.
//
// A thread serves one request at a time; any number of threads may do so.

#ifndef ARXGATE_JOURNAL_H
#define ARXGATE_JOURNAL_H

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

#include <httplib.h>

class Journal
{
public:
    // Bytes of a body that the server doesn't hold, of this thread's request.
    static void countSent(std::size_t bytes);
    // Writes a line in the common log format on standard error. Its size is that of the body as it was sent,
    // also where the response broke off.
    void end(httplib::Request const& request, httplib::Response const& response);

    // In the text format of Prometheus.
    std::string format() const;

private:
    std::array<std::atomic<std::uint64_t>, 600> m_requests{};  // by status
    std::atomic<std::uint64_t> m_sent{0};
};

#endif
