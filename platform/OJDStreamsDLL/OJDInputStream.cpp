#include "OJDStreamsDLL/OJDInputStream.h"

#include "NEBCore/NEBByteBuffer.h"

namespace
{
// readOnce takes the number of bytes that were read, and the number of those that are missing.
template <class ReadOnce>
std::size_t repeat(std::size_t n, ReadOnce const& readOnce)
{
    std::size_t total = 0;
    while (total < n)
    {
        std::size_t const count = readOnce(total, n - total);
        if (count == 0 || count == OJDInputStream::s_end)
            return total == 0 ? OJDInputStream::s_end : total;
        total += count;
    }
    return total;
}
}  // namespace

OJDInputStream::~OJDInputStream() = default;

std::size_t OJDInputStream::read(char* buf, std::size_t n)
{
    std::size_t count = 0;
    for (std::size_t byte; count < n && (byte = read()) != s_end; ++count)
        buf[count] = static_cast<char>(byte);
    return count == 0 && n > 0 ? s_end : count;
}

std::size_t OJDInputStream::readFully(char* buf, std::size_t n)
{
    return repeat(n, [&](std::size_t total, std::size_t missing) { return read(buf + total, missing); });
}

std::size_t OJDInputStream::readFully(NEBByteBuffer& buf, std::size_t n)
{
    return repeat(n, [&](std::size_t, std::size_t missing) { return read(buf, missing); });
}
