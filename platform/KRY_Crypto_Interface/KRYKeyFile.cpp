#include "KRY_Crypto_Interface/KRYKeyFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <openssl/rand.h>
#include <unistd.h>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYTemporaryFile.h"
#include "NEBCFGAPI/NEBConfigurationFactory.h"

namespace
{
constexpr char s_defaultName[] = "master.key";

std::string configuredPath()
{
    INEBConfiguration& configuration = NEBConfigurationFactory::getInstance();
    return configuration.getConfigurationValue(I18NString("cryptoKeyFile"), 0).c_str();
}

// The value of an environment variable that names a folder; relative ones do not count.
std::string folderFrom(char const* variable)
{
    char const* const value = std::getenv(variable);
    return value && *value == '/' ? value : "";
}

std::string defaultFolder()
{
    std::string const state = folderFrom("XDG_STATE_HOME");
    if (!state.empty())
        return state + "/arxium";
    std::string const home = folderFrom("HOME");
    if (home.empty())
        throw KRYError(KRY_ERROR_KEY,
                       "no place for the key file: none of cryptoKeyFile, XDG_STATE_HOME and HOME is set");
    return home + "/.local/state/arxium";
}

void makeFolder(std::string const& path)
{
    auto const make = [&] { return retryInterrupted([&] { return ::mkdir(path.c_str(), 0700); }); };
    std::string const parent = path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
    int result = make();
    if (result == -1 && errno == ENOENT && parent.size() > 1)
    {
        makeFolder(parent);
        result = make();
    }
    if (result == -1 && errno != EEXIST)
        raiseSystemError(KRY_ERROR_KEY, "folder " + path + " of the key file can't be made");
    if (result == 0)
        KRYFile("folder " + parent, AT_FDCWD, parent.c_str(), O_RDONLY | O_DIRECTORY).sync();
}

void makeKeyFile(std::string const& folder)
{
    makeFolder(folder);
    KRYFile directory("folder " + folder, AT_FDCWD, folder.c_str(), O_RDONLY | O_DIRECTORY);
    KRYTemporaryFile file(directory, s_defaultName, 0600);
    KRYSecret key;
    requireCrypto(RAND_bytes(key.data(), static_cast<int>(KRYSecret::s_size)) == 1, "RAND_bytes");
    file.write(key.data(), KRYSecret::s_size);
    file.offer();
}

std::string defaultPath()
{
    std::string const folder = defaultFolder();
    std::string path = folder + "/" + s_defaultName;
    struct stat status;
    if (retryInterrupted([&] { return ::stat(path.c_str(), &status); }) == -1 && errno == ENOENT)
        makeKeyFile(folder);
    return path;
}

struct Rule
{
    bool (*m_isBroken)(struct stat const& status);
    char const* m_text;
};
constexpr Rule s_rules[] = {
    {[](struct stat const& status) { return !S_ISREG(status.st_mode); }, " is no regular file"},
    {[](struct stat const& status) { return status.st_uid != ::geteuid(); }, " belongs to another user"},
    {[](struct stat const& status) { return (status.st_mode & (S_IRWXG | S_IRWXO)) != 0; },
     " is open to group or others"},
    {[](struct stat const& status) { return status.st_size != off_t{KRYSecret::s_size}; },
     " does not hold exactly 32 bytes"},
};
}  // namespace

std::unique_ptr<KRYSecret> KRYKeyFile::load()
{
    std::string path = configuredPath();
    if (path.empty())
        path = defaultPath();
    std::string const label = "key file " + path;
    KRYFile file(label, AT_FDCWD, path.c_str(), O_RDONLY | O_NONBLOCK);
    struct stat const status = file.getStatus();
    for (Rule const& rule : s_rules)
        if (rule.m_isBroken(status))
            throw KRYError(KRY_ERROR_KEY, label + rule.m_text);
    auto key = std::make_unique<KRYSecret>();
    if (file.readAt(0, key->data(), KRYSecret::s_size) != KRYSecret::s_size)
        throw KRYError(KRY_ERROR_KEY, label + " was cut while it was read");
    return key;
}
