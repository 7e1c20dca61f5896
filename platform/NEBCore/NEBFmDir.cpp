#include "NEBCore/NEBFmDir.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include "NEBCore/I18NString.h"
#include "os/OsFileName.h"

namespace
{
// Finds the type of an entry: 0 if it, or the target of a link, is gone or can't be reached.
bool readType(int directory, char const* name, int flags, mode_t& type)
{
    struct stat status;
    bool const isKnown = fstatat(directory, name, &status, flags) == 0;
    type = isKnown ? status.st_mode & S_IFMT : 0;
    return isKnown || errno == ENOENT || errno == ENOTDIR || errno == ELOOP || errno == EACCES;
}

// Finds the type to list: a link to a regular file counts as that, any other link as 0.
bool readEntryType(int directory, dirent const& entry, mode_t& type)
{
    type = static_cast<mode_t>(DTTOIF(entry.d_type));
    if (entry.d_type == DT_UNKNOWN && !readType(directory, entry.d_name, AT_SYMLINK_NOFOLLOW, type))
        return false;
    if (type != S_IFLNK)
        return true;
    bool const isRead = readType(directory, entry.d_name, 0, type);
    type = type == S_IFREG ? type : 0;
    return isRead;
}

bool listEntries(DIR* directory, std::vector<std::string>& files, std::vector<std::string>& dirs)
{
    // Only errno tells the end from a failure.
    for (errno = 0; dirent const* entry = readdir(directory); errno = 0)
    {
        std::string const name = entry->d_name;
        mode_t type = 0;
        if (!readEntryType(dirfd(directory), *entry, type))
            return false;
        if (type == S_IFREG)
            files.push_back(name);
        else if (type == S_IFDIR && name != "." && name != "..")
            dirs.push_back(name);
    }
    return errno == 0;
}

void giveSorted(std::vector<std::string>& names, std::vector<std::string>* target)
{
    if (!target)
        return;
    std::sort(names.begin(), names.end());
    target->swap(names);
}
}  // namespace

int NEBFmDir::exists(char const* path, int mode)
{
    struct stat status;
    return path && stat(OsFileName::forReading(path).c_str(), &status) == 0 &&
           (status.st_mode & S_IFMT) == (static_cast<unsigned>(mode) & S_IFMT);
}

void NEBFmDir::splitPath(std::string const& path, std::string* directory, std::string* file)
{
    std::size_t const start = path.find_last_of("/\\") + 1;  // npos + 1 is 0
    std::string tail = path.substr(start);
    // The separator belongs to neither part, except that of the root.
    if (directory)
        *directory = path.substr(0, start > 1 ? start - 1 : start);
    if (file)
        *file = std::move(tail);
}

void NEBFmDir::joinPath(std::string& base, std::string const& name)
{
    if (!base.empty() && base.back() != '/' && base.back() != '\\')
        base += '/';
    base += name;
}

void NEBFmDir::joinPath(I18NString& base, I18NString const& name)
{
    std::string joined = base.c_str();
    joinPath(joined, name.c_str());
    base = I18NString(joined.c_str());
}

int NEBFmDir::createRecursiveDir(std::string const& path)
{
    std::error_code error;
    if (!path.empty())
        std::filesystem::create_directories(OsFileName::forWriting(path), error);
    return !error;
}

int NEBFmDir::readDir(char const* dirName, std::vector<std::string>* files, void*,
                      std::vector<std::string>* dirs, void*)
{
    std::vector<std::string> fileNames;
    std::vector<std::string> dirNames;
    std::unique_ptr<DIR, int (*)(DIR*)> const directory(
        dirName ? opendir(OsFileName::forReading(dirName).c_str()) : nullptr, closedir);
    bool const isRead = directory && listEntries(directory.get(), fileNames, dirNames);
    if (!isRead)
    {
        fileNames.clear();
        dirNames.clear();
    }
    giveSorted(fileNames, files);
    giveSorted(dirNames, dirs);
    return isRead;
}

void NEBFmDir::resolveEffectivePath(std::string& path)
{
    if (path.empty())
        return;

    std::error_code error;
    std::string const name = OsFileName::forReading(path);
    // A relative path whose first part is missing would stay relative.
    std::filesystem::path const absolute = std::filesystem::absolute(name, error);
    if (error)
    {
        path = "./" + name;
        return;
    }
    std::string resolved = std::filesystem::weakly_canonical(absolute, error).string();
    if (error)
        resolved = absolute.string();
    else if (resolved.size() > 1 && resolved.back() == '/')
        resolved.pop_back();
    path = std::move(resolved);
}
