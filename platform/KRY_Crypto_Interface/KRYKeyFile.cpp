#include "KRY_Crypto_Interface/KRYKeyFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

#include "KRY_Crypto_Interface/KRYError.h"
#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "os/OsFile.h"
#include "os/OsPlacedFile.h"

namespace
{
constexpr std::int64_t s_keySize = KRYSecret::s_size;
constexpr std::int64_t s_limit = 64;

std::string defaultPath()
{
    char const* const places[][2] = {{"XDG_STATE_HOME", "/arxium/master.key"},
                                     {"HOME", "/.local/state/arxium/master.key"}};
    for (auto const& [variable, file] : places)
    {
        char const* const folder = std::getenv(variable);
        if (folder && *folder == '/')  // relative ones do not count
            return std::string(folder) + file;
    }
    throw KRYError(KRY_ERROR_KEY,
                   "no place for the key file: none of cryptoKeyFile, XDG_STATE_HOME and HOME is set");
}

void makeFolder(std::string const& path)
{
    std::string const parent = path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
    if (::access(parent.c_str(), F_OK) != 0)
        makeFolder(parent);
    if (::mkdir(path.c_str(), 0700) != 0)
    {
        if (errno == EEXIST)
            return;
        raiseSystemError(KRY_ERROR_KEY, "folder " + path + " of the key file can't be made");
    }
    OsFile folder;
    if (!folder.open(parent.c_str(), OsFile::s_read | OsFile::s_directory) || !folder.sync())
        raiseSystemError(KRY_ERROR_FILE, "folder " + parent + " can't be synchronised with the disk");
}

void makeKeyFile(std::string const& path)
{
    makeFolder(path.substr(0, path.rfind('/')));
    KRYSecret key;
    requireCrypto(RAND_bytes(key.data(), int{KRYSecret::s_size}) == 1, "RAND_bytes");
    OsPlacedFile file;
    if (!file.create(path, 0600) || file.write(key.data(), KRYSecret::s_size) != KRYSecret::s_size ||
        !file.offer())
        throw KRYError(KRY_ERROR_FILE, file.getFailure());
}

// What is wrong with a key file; null if it keeps its rules.
char const* faultOf(OsFileStatus const& status)
{
    if (status.m_type != OsFile::s_regularFile)
        return " is not a regular file";
    if (status.m_owner != ::geteuid())
        return " belongs to another user";
    if ((status.m_permissions & 0077) != 0)
        return " is open to group or others";
    if (status.m_size <= 0 || status.m_size > s_limit * s_keySize || status.m_size % s_keySize != 0)
        return " does not hold 1 to 64 keys of 32 bytes";
    return nullptr;
}
}  // namespace

KRYMasterKeys loadKeyFile()
{
    INEBConfiguration& configuration = NEBConfigurationFactory::getInstance();
    std::string path = configuration.getConfigurationValue("cryptoKeyFile", nullptr).c_str();
    if (path.empty())
    {
        path = defaultPath();
        if (::access(path.c_str(), F_OK) == -1 && errno == ENOENT)
            makeKeyFile(path);
    }
    std::string const label = "key file " + path;
    OsFile file;
    OsFileStatus status;
    if (!file.open(path.c_str(), OsFile::s_read | OsFile::s_noWait) || !file.getStatus(status))
        raiseSystemError(KRY_ERROR_FILE, label + " can't be opened");
    if (char const* const fault = faultOf(status))
        throw KRYError(KRY_ERROR_KEY, label + fault);
    KRYMasterKeys keys(static_cast<std::size_t>(status.m_size / s_keySize));
    for (KRYSecret& key : keys)
    {
        std::int64_t const count = file.read(key.data(), KRYSecret::s_size);
        if (count < 0)
            raiseSystemError(KRY_ERROR_FILE, label + " can't be read");
        if (count != s_keySize)
            throw KRYError(KRY_ERROR_KEY, label + " was cut while it was read");
    }
    return keys;
}
