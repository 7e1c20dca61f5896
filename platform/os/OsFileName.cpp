#include "os/OsFileName.h"

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

namespace
{
bool isMissing(std::string const& path)
{
    struct stat status;
    // A path of many folders spelled with \ is one overlong name to the system.
    return stat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}
}  // namespace

std::string OsFileName::forWriting(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::string OsFileName::forReading(std::string const& path)
{
    bool const isPlain = path.find('\\') == std::string::npos;
    return isPlain || !isMissing(path) ? path : forWriting(path);
}
