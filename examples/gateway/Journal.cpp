#include "Journal.h"

#include <cstdio>
#include <ctime>
#include <utility>

#include "Text.h"

namespace
{
thread_local std::uint64_t t_sent = 0;  // of the request that this thread serves

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

void Journal::countSent(std::size_t bytes)
{
    t_sent += bytes;
}

void Journal::end(httplib::Request const& request, httplib::Response const& response)
{
    std::uint64_t const sent =
        std::exchange(t_sent, 0) + (request.method == "HEAD" ? 0 : response.body.size());
    ++m_requests.at(static_cast<std::size_t>(response.status));
    m_sent += sent;
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
    return text + "# TYPE arxgate_sent_bytes_total counter\narxgate_sent_bytes_total " +
           std::to_string(m_sent) + "\n";
}
