#include "KRY_Crypto_Interface/KRYFile.h"

#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "KRY_Crypto_Interface/KRYError.h"

KRYFile::KRYFile(std::string label, int directory, char const* path, int flags, mode_t mode)
    : m_label(std::move(label)),
      m_descriptor(
          retryInterrupted([&] { return ::openat(directory, path, flags | O_CLOEXEC | O_NOCTTY, mode); }))
{
    if (m_descriptor == -1)
        fail("can't be opened");
}

KRYFile::~KRYFile()
{
    if (m_descriptor != -1)
        ::close(m_descriptor);
}

struct stat KRYFile::getStatus() const
{
    struct stat status;
    if (retryInterrupted([&] { return ::fstat(m_descriptor, &status); }) == -1)
        fail("can't be examined");
    return status;
}

std::size_t KRYFile::readAt(std::uint64_t offset, unsigned char* target, std::size_t size) const
{
    std::size_t count = 0;
    while (count < size)
    {
        auto const place = static_cast<off_t>(offset + count);
        ssize_t const got =
            retryInterrupted([&] { return ::pread(m_descriptor, target + count, size - count, place); });
        if (got == -1)
            fail("can't be read");
        if (got == 0)
            break;
        count += static_cast<std::size_t>(got);
    }
    return count;
}

void KRYFile::write(unsigned char const* data, std::size_t size)
{
    while (size != 0)
    {
        ssize_t const written = retryInterrupted([&] { return ::write(m_descriptor, data, size); });
        if (written == -1)
            fail("can't be written");
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

void KRYFile::sync()
{
    if (retryInterrupted([&] { return ::fsync(m_descriptor); }) == -1)
        fail("can't be synchronised with the disk");
}

void KRYFile::close()
{
    // Closed whatever the answer: Linux has given the number back even where the call was interrupted.
    if (::close(std::exchange(m_descriptor, -1)) == -1 && errno != EINTR)
        fail("can't be closed");
}

void KRYFile::fail(char const* what) const
{
    raiseSystemError(KRY_ERROR_FILE, m_label + " " + what);
}
