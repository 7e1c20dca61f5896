#include "NEBCore/NEBFmFile.h"

#include <algorithm>
#include <cerrno>

#include "os/OsFileName.h"

NEBFmFile::NEBFmFile() : m_remaining(-1) {}

NEBFmFile::~NEBFmFile() = default;

int NEBFmFile::open(std::string const& path, int mode, int)
{
    close();
    if (mode == s_readExisting)
        return openForReading(OsFileName::forReading(path));
    if (mode == s_createOrTruncate)
        return m_file.open(OsFileName::forWriting(path).c_str(),
                           OsFile::s_write | OsFile::s_create | OsFile::s_truncate);
    errno = EINVAL;
    return 0;
}

std::int64_t NEBFmFile::read(void* buffer, std::size_t size)
{
    if (m_remaining < 0)
        return m_file.read(buffer, size);
    auto const bound = std::min<std::uint64_t>(size, static_cast<std::uint64_t>(m_remaining));
    std::int64_t const count = m_file.read(buffer, static_cast<std::size_t>(bound));
    m_remaining -= std::max<std::int64_t>(count, 0);
    return count;
}

std::int64_t NEBFmFile::write(void const* buffer, std::size_t size)
{
    return static_cast<std::int64_t>(m_file.write(buffer, size));
}

int NEBFmFile::close()
{
    m_remaining = -1;
    return m_file.close();
}

bool NEBFmFile::openForReading(std::string const& path)
{
    OsFileStatus status;
    if (!m_file.open(path.c_str(), OsFile::s_read))
        return false;
    bool const isKnown = m_file.getStatus(status);
    if (isKnown && status.m_type != OsFile::s_folder)  // the system opens directories for reading too
    {
        m_remaining = status.m_type == OsFile::s_regularFile ? status.m_size : -1;
        return true;
    }
    int const reason = isKnown ? EISDIR : errno;
    m_file.close();
    errno = reason;
    return false;
}
