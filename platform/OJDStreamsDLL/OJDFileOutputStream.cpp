#include "OJDStreamsDLL/OJDFileOutputStream.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "NEBCore/NEBException.h"

namespace
{
std::size_t constexpr s_bufferSize = 16384;

[[noreturn]] void refuse(NEBFileLocation const& where, std::string const& name, char const* reason,
                         char const* operation)
{
    NEBException((name + ": " + reason).c_str()).hurl(where, operation, "NEB_THROW");
}

int openForWriting(char const* name)
{
    int descriptor;
    do
        descriptor = ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}
}  // namespace

OJDFileOutputStream::OJDFileOutputStream(char const* filename, int)
    : m_name(filename ? filename : ""), m_descriptor(-1), m_buffer(s_bufferSize, s_bufferSize)
{
    if (!filename)
        return;
    m_buffer.reserve(s_bufferSize);  // so that no write lacks memory later
    m_descriptor = openForWriting(filename);
    if (m_descriptor < 0)
        refuse(NEB_HERE, m_name, std::strerror(errno), "OJDFileOutputStream::open");
}

OJDFileOutputStream::~OJDFileOutputStream()
{
    try
    {
        OJDFileOutputStream::close();
    }
    catch (...)
    {
        return;
    }
}

void OJDFileOutputStream::write(char const* data, std::size_t size)
{
    if (m_descriptor < 0)
        refuse(NEB_HERE, m_name, "no file is open", "OJDFileOutputStream::write");
    // What fits is held back; a large piece goes to the system in one call, without a copy.
    if (size > s_bufferSize - m_buffer.pcount())
        OJDFileOutputStream::flush();

    if (size < s_bufferSize)
        m_buffer.appendChars(data, size);
    else if (send(data, size) != size)
        refuse(NEB_HERE, m_name, std::strerror(errno), "OJDFileOutputStream::write");
}

void OJDFileOutputStream::flush()
{
    std::size_t const size = m_buffer.pcount();
    std::size_t const sent = send(m_buffer.str(), size);
    if (sent != size)
        std::memmove(m_buffer.str(), m_buffer.str() + sent, size - sent);
    m_buffer.setLength(size - sent);
    if (sent != size)
        refuse(NEB_HERE, m_name, std::strerror(errno), "OJDFileOutputStream::flush");
}

void OJDFileOutputStream::close()
{
    if (m_descriptor < 0)
        return;
    std::size_t const size = m_buffer.pcount();
    int const flushError = send(m_buffer.str(), size) == size ? 0 : errno;
    // An interrupted close has released the descriptor all the same, which must not be closed twice.
    int const closeError = ::close(m_descriptor) == 0 || errno == EINTR ? 0 : errno;
    m_descriptor = -1;
    m_buffer.reset();
    if (int const error = flushError ? flushError : closeError)
        refuse(NEB_HERE, m_name, std::strerror(error), "OJDFileOutputStream::close");
}

// The number of bytes that the system took: size, or less with the reason in errno.
std::size_t OJDFileOutputStream::send(char const* data, std::size_t size)
{
    std::size_t sent = 0;
    while (sent < size)
    {
        ssize_t const written = ::write(m_descriptor, data + sent, size - sent);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
        {
            errno = written < 0 ? errno : EIO;  // nothing taken and no reason given
            return sent;
        }
        sent += static_cast<std::size_t>(written);
    }
    return sent;
}
