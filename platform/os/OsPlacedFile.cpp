#include "os/OsPlacedFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include "os/OsFileName.h"

namespace
{
// Empty if the system has no random bytes.
std::string makeRandomName()
{
    std::uint64_t number;
    OsFile device;  // for where getrandom is forbidden
    if (::getrandom(&number, sizeof number, 0) != sizeof number &&
        (!device.open("/dev/urandom", OsFile::s_read) ||
         device.read(&number, sizeof number) != sizeof number))
        return "";
    char text[22];
    std::snprintf(text, sizeof text, ".arx-%016llx", static_cast<unsigned long long>(number));
    return text;
}
}  // namespace

OsPlacedFile::OsPlacedFile() : m_process(::getpid()), m_failure(nullptr), m_error(0) {}

OsPlacedFile::~OsPlacedFile()
{
    if (::getpid() == m_process)
        remove();
}

bool OsPlacedFile::create(std::string const& target, unsigned mode)
{
    m_target = OsFileName::forWriting(target);
    std::size_t const nameStart = m_target.rfind('/') + 1;  // npos + 1 is 0
    std::string const directory = nameStart == 0 ? "./" : m_target.substr(0, nameStart);
    m_name = m_target.substr(nameStart);
    if (!m_directory.open(directory.c_str(), OsFile::s_read | OsFile::s_directory))
        return fail("can't be created");

    struct stat status;
    char const* const name = m_name.empty() ? "." : m_name.c_str();
    bool const isThere = ::fstatat(m_directory.getDescriptor(), name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (!isThere && errno != ENOENT)
        return fail("can't be examined");
    if (isThere && !S_ISREG(status.st_mode))
    {
        errno = EEXIST;
        return fail("is not a regular file");
    }
    // Another user may have made the target, so as to read what is written there.
    bool const isOurs = isThere && status.st_uid == ::geteuid();
    unsigned const former = isThere ? status.st_mode & 0777 : mode;
    if (!createTemporary(isOurs ? former : former & mode, isOurs || (mode & 0077) == 0))
        return fail("can't be created");
    m_path = directory + m_temporaryName;
    return true;
}

std::size_t OsPlacedFile::write(void const* data, std::size_t size)
{
    if (!isUsable())
        return 0;
    std::size_t const written = m_file.write(data, size);
    if (written != size)
        fail("can't be written");
    return written;
}

bool OsPlacedFile::replace()
{
    return complete() && takeName() && syncDirectory();
}

bool OsPlacedFile::replaceUnsynced()
{
    return isUsable() && (m_file.close() || fail("can't be closed")) && takeName();
}

bool OsPlacedFile::offer()
{
    if (!complete())
        return false;
    int const directory = m_directory.getDescriptor();
    if (::linkat(directory, m_temporaryName.c_str(), directory, m_name.c_str(), 0) != 0 && errno != EEXIST)
        return fail("can't take its name");
    return remove() ? syncDirectory() : fail("keeps a second name, which can't be removed");
}

std::string OsPlacedFile::getFailure() const
{
    return m_failure ? "file " + m_target + " " + m_failure + ": " + std::strerror(m_error) : "";
}

bool OsPlacedFile::createTemporary(unsigned mode, bool isExact)
{
    std::string name = makeRandomName();
    // fchmod only restores what the umask took, so that at no moment more may open the file than in the end.
    if (name.empty() || !m_file.open(m_directory, name.c_str(),
                                     OsFile::s_write | OsFile::s_create | OsFile::s_exclusive, mode))
        return false;
    m_temporaryName = std::move(name);
    return !isExact || m_file.setPermissions(mode);
}

// A failure is final, so that no part of a file is ever placed.
bool OsPlacedFile::isUsable()
{
    if (!m_failure && ::getpid() != m_process)
    {
        errno = EPERM;
        return fail("belongs to another process");
    }
    if (m_failure)
        errno = m_error;
    return !m_failure;
}

bool OsPlacedFile::complete()
{
    return isUsable() && (m_file.sync() || fail("can't be synchronised with the disk")) &&
           (m_file.close() || fail("can't be closed"));
}

bool OsPlacedFile::takeName()
{
    int const directory = m_directory.getDescriptor();
    if (::renameat(directory, m_temporaryName.c_str(), directory, m_name.c_str()) != 0)
        return fail("can't take its name");
    m_temporaryName.clear();
    return true;
}

bool OsPlacedFile::remove()
{
    if (!m_temporaryName.empty() && ::unlinkat(m_directory.getDescriptor(), m_temporaryName.c_str(), 0) != 0)
        return false;
    m_temporaryName.clear();
    return true;
}

bool OsPlacedFile::syncDirectory()
{
    return m_directory.sync() || fail("is in a directory that can't be synchronised with the disk");
}

bool OsPlacedFile::fail(char const* what)
{
    m_failure = what;
    m_error = errno;
    return false;
}
