#include "Journal.h"

#include <cstdio>
#include <ctime>

#include "Text.h"

namespace
{
using Clock = std::chrono::steady_clock;

// The request that this thread serves.
thread_local std::uint64_t t_sent = 0;
thread_local Clock::time_point t_begin;

// What clients send must not end a line or drive a terminal.
std::string escape(std::string const& text)
{
    std::string escaped;
    for (char const c : text)
    {
        bool const plain = c > ' ' && c < 0x7f && c != '"' && c != '\\';
        escaped += plain ? std::string(1, c) : "\\x" + toHex(&c, 1);
    }
    return escaped;
}
}  // namespace

void Journal::begin()
{
    t_sent = 0;
    t_begin = Clock::now();
}

void Journal::countSent(std::size_t bytes)
{
    t_sent += bytes;
}

void Journal::end(httplib::Request const& request, httplib::Response const& response)
{
    std::uint64_t const sent = request.method == "HEAD" ? 0 : t_sent + response.body.size();
    auto const elapsed = Clock::now() - t_begin;
    ++m_requests.at(static_cast<std::size_t>(response.status));
    m_sent += sent;
    m_microseconds +=
        static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count());
    std::fprintf(stderr, "%s - - [%s] \"%s %s %s\" %d %llu\n", request.remote_addr.c_str(),
                 formatTime("%d/%b/%Y:%H:%M:%S +0000", std::time(nullptr)).c_str(),
                 escape(request.method).c_str(), escape(request.target).c_str(),
                 escape(request.version).c_str(), response.status, static_cast<unsigned long long>(sent));
}

std::string Journal::format() const
{
    std::string text = "# TYPE arxgate_requests_total counter\n";
    for (std::size_t status = 0; status < m_requests.size(); ++status)
        if (std::uint64_t const count = m_requests[status])
            text += "arxgate_requests_total{code=\"" + std::to_string(status) + "\"} " +
                    std::to_string(count) + "\n";
    return text + "# TYPE arxgate_request_seconds_total counter\narxgate_request_seconds_total " +
           std::to_string(static_cast<double>(m_microseconds) / 1e6) +
           "\n# TYPE arxgate_sent_bytes_total counter\narxgate_sent_bytes_total " + std::to_string(m_sent) +
           "\n";
}
