#include "os/OsFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
int toSystemFlags(unsigned flags)
{
    int constexpr access[] = {O_RDONLY, O_RDONLY, O_WRONLY, O_RDWR};
    int result = access[flags & 3] | O_CLOEXEC | O_NOCTTY;
    result |= (flags & OsFile::s_create) != 0 ? O_CREAT : 0;
    result |= (flags & OsFile::s_truncate) != 0 ? O_TRUNC : 0;
    result |= (flags & OsFile::s_exclusive) != 0 ? O_EXCL | O_NOFOLLOW : 0;
    result |= (flags & OsFile::s_directory) != 0 ? O_DIRECTORY : 0;
    result |= (flags & OsFile::s_noWait) != 0 ? O_NONBLOCK : 0;
    return result;
}

int openAt(int directory, char const* path, unsigned flags, unsigned mode)
{
    return static_cast<int>(TEMP_FAILURE_RETRY(::openat(directory, path, toSystemFlags(flags), mode)));
}

// Reads parts until there are size bytes, or as many as the file has.
template <class ReadPart>
std::int64_t readFully(void* target, std::size_t size, ReadPart const& readPart)
{
    std::size_t done = 0;
    while (done < size)
    {
        char* const place = static_cast<char*>(target) + done;
        ssize_t const count = TEMP_FAILURE_RETRY(readPart(place, size - done, done));
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return static_cast<std::int64_t>(done);
}
}  // namespace

OsFile::OsFile(int descriptor) noexcept : m_descriptor(descriptor) {}

OsFile::~OsFile()
{
    close();
}

bool OsFile::open(char const* path, unsigned flags, unsigned mode) noexcept
{
    close();
    m_descriptor = openAt(AT_FDCWD, path, flags, mode);
    return isOpen();
}

bool OsFile::open(OsFile const& directory, char const* path, unsigned flags, unsigned mode) noexcept
{
    close();
    m_descriptor = openAt(directory.m_descriptor, path, flags, mode);
    return isOpen();
}

int OsFile::release() noexcept
{
    int const descriptor = m_descriptor;
    m_descriptor = -1;
    return descriptor;
}

bool OsFile::getStatus(OsFileStatus& status) const noexcept
{
    struct stat found;
    if (::fstat(m_descriptor, &found) != 0)
        return false;
    status = {found.st_mode & S_IFMT, found.st_mode & 0777, found.st_uid, found.st_size};
    return true;
}

bool OsFile::setPermissions(unsigned permissions) noexcept
{
    return TEMP_FAILURE_RETRY(::fchmod(m_descriptor, permissions)) == 0;
}

std::int64_t OsFile::read(void* target, std::size_t size) noexcept
{
    auto const readPart = [&](char* place, std::size_t count, std::size_t)
    { return ::read(m_descriptor, place, count); };
    return readFully(target, size, readPart);
}

std::int64_t OsFile::readAt(std::uint64_t offset, void* target, std::size_t size) const noexcept
{
    auto const readPart = [&](char* place, std::size_t count, std::size_t done)
    { return ::pread(m_descriptor, place, count, static_cast<off_t>(offset + done)); };
    return readFully(target, size, readPart);
}

std::size_t OsFile::write(void const* data, std::size_t size) noexcept
{
    std::size_t done = 0;
    while (done < size)
    {
        char const* const rest = static_cast<char const*>(data) + done;
        ssize_t const count = TEMP_FAILURE_RETRY(::write(m_descriptor, rest, size - done));
        if (count == 0)
            errno = EIO;  // the system took nothing and gave no reason
        if (count <= 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

bool OsFile::sync() noexcept
{
    return TEMP_FAILURE_RETRY(::fsync(m_descriptor)) == 0;
}

bool OsFile::close() noexcept
{
    // Never repeated: an interrupted close has released the descriptor, which may be another's by now.
    int const descriptor = release();
    return descriptor == -1 || ::close(descriptor) == 0 || errno == EINTR;
}
