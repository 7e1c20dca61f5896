#include "NEBCore/NEBFmFile.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "NEBCore/NEBFmName.h"

namespace
{
int constexpr s_modeWrite = 2;
int constexpr s_modeRead = 3;

template <typename Call>
auto retryInterrupted(Call const& call)
{
    auto result = call();  // a signal to the host's thread is no failure
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

int openDescriptor(std::string const& name, int flags)
{
    return retryInterrupted([&] { return ::open(name.c_str(), flags | O_CLOEXEC, 0666); });
}

// Repeats call(offset, rest) until size bytes are through, it gives 0, or it fails; the number of bytes.
template <typename Call>
std::size_t transferAll(std::size_t size, Call const& call, bool& failed)
{
    std::size_t done = 0;
    ssize_t count = 1;
    while (done < size && count > 0)
    {
        count = retryInterrupted([&] { return call(done, size - done); });
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    failed = count < 0;
    return done;
}
}  // namespace

NEBFmFile::NEBFmFile() : m_descriptor(-1), m_remaining(-1) {}

NEBFmFile::~NEBFmFile()
{
    close();
}

int NEBFmFile::open(std::string const& path, int mode, int)
{
    close();
    if (mode == s_modeRead)
        return openForReading(NEBFmName::forReading(path));
    if (mode == s_modeWrite)
        m_descriptor = openDescriptor(NEBFmName::forWriting(path), O_WRONLY | O_CREAT | O_TRUNC);
    else
        errno = EINVAL;
    return m_descriptor >= 0;
}

std::int64_t NEBFmFile::read(void* buffer, std::size_t size)
{
    if (m_remaining >= 0)
        size =
            static_cast<std::size_t>(std::min<std::uint64_t>(size, static_cast<std::uint64_t>(m_remaining)));
    auto const readSome = [this, target = static_cast<char*>(buffer)](std::size_t offset, std::size_t rest)
    { return ::read(m_descriptor, target + offset, rest); };
    bool failed = false;
    auto const count = static_cast<std::int64_t>(transferAll(size, readSome, failed));
    if (m_remaining >= 0)
        m_remaining -= count;
    return failed ? -1 : count;
}

std::int64_t NEBFmFile::write(void const* buffer, std::size_t size)
{
    auto const writeSome =
        [this, source = static_cast<char const*>(buffer)](std::size_t offset, std::size_t rest)
    { return ::write(m_descriptor, source + offset, rest); };
    bool failed = false;
    return static_cast<std::int64_t>(transferAll(size, writeSome, failed));
}

int NEBFmFile::close()
{
    int const descriptor = m_descriptor;
    m_descriptor = -1;
    m_remaining = -1;
    // Never repeated: the system gives the descriptor free even where it reports an interruption.
    return descriptor < 0 || ::close(descriptor) == 0;
}

bool NEBFmFile::openForReading(std::string const& path)
{
    // The system opens directories for reading too, so its yes is not enough.
    m_descriptor = openDescriptor(path, O_RDONLY);
    if (m_descriptor < 0)
        return false;

    struct stat status;
    bool const isKnown = fstat(m_descriptor, &status) == 0;
    if (isKnown && !S_ISDIR(status.st_mode))
    {
        m_remaining = S_ISREG(status.st_mode) ? static_cast<std::int64_t>(status.st_size) : -1;
        return true;
    }
    int const reason = isKnown ? EISDIR : errno;
    close();
    errno = reason;
    return false;
}
