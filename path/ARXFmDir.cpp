#include "path/ARXFmDir.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <utility>

#include "NEBCore/NEBFmDir.h"
#include "frame/ARXAssert.h"
#include "os/OsDirectory.h"

namespace
{
int constexpr s_currentDirectorySize = 261;  // the terminator included
std::size_t constexpr s_drivePrefixSize = 2;

// For isalpha and the like, which take no negative values.
int toByte(char c)
{
    return static_cast<unsigned char>(c);
}
}  // namespace

ARXFmDir::ARXFmDir() = default;

ARXFmDir::~ARXFmDir() = default;

bool ARXFmDir::isFile(char const* path) const
{
    return NEBFmDir::exists(path, NEBFmDir::s_regularFile) != 0;
}

bool ARXFmDir::hasDriveLetter(char const* path)
{
    NEB_ASSERT(path);
    return std::isalpha(toByte(path[0])) != 0 && path[1] == ':';
}

bool ARXFmDir::isAbsolutePath(char const* path)
{
    NEB_ASSERT(path);
    return isPathSeparator(path[hasDriveLetter(path) ? s_drivePrefixSize : 0]);
}

bool ARXFmDir::isEquivalentPathChar(char a, char b)
{
    return a == b || (isPathSeparator(a) && isPathSeparator(b));
}

bool ARXFmDir::isEquivalentPath(char const* path1, char const* path2)
{
    NEB_ASSERT(path1 && path2);
    std::uint64_t const offset = findDifferentiatingPathOffset(path1, path2);
    return path1[offset] == path2[offset];  // true only where both end
}

std::uint64_t ARXFmDir::findDifferentiatingPathOffset(char const* path1, char const* path2)
{
    NEB_ASSERT(path1 && path2);
    std::uint64_t offset = 0;
    // path2 needs no test: its terminator is equivalent to nothing but that of path1.
    while (path1[offset] != '\0' && isEquivalentPathChar(path1[offset], path2[offset]))
        ++offset;
    return offset;
}

void ARXFmDir::normalizePathSeparator(std::string& path)
{
    for (auto at = path.find('\\'); at != std::string::npos; at = path.find('\\', at + 1))
        path[at] = '/';
}

void ARXFmDir::getNormalizedPath(std::string const& path, std::string& out)
{
    NEB_ASSERT_NAMED(! path.empty(), "Empty paths are not allowed.");
    ARXFmDirPathParts parts;
    splitPathIntoParts(path, parts);
    parts.removeCurrentDir();
    parts.removeParentDir();
    parts.getPath(out);
    normalizePathSeparator(out);
    if (out.empty())
        out = ".";
}

void ARXFmDir::getAbsolutePath(char const* pwd, char const* path, std::string& out)
{
    NEB_ASSERT(pwd);
    NEB_ASSERT(path);
    std::string result;  // pwd or path may be the storage of out
    if (!isAbsolutePath(path))
    {
        result = pwd;
        if (hasDriveLetter(pwd) && hasDriveLetter(path))
        {
            int const pwdDrive = std::toupper(toByte(pwd[0]));
            int const pathDrive = std::toupper(toByte(path[0]));
            NEB_ASSERT_NAMED(pwdDrive == pathDrive, "Relative path has different drive letter than current directory.");
            path += s_drivePrefixSize;
        }
    }
    NEBFmDir::joinPath(result, path);
    out = std::move(result);
}

void ARXFmDir::getAbsolutePath(char const* path, std::string& out)
{
    char buffer[s_currentDirectorySize];
    char const* const pwd = _getcwd(buffer, s_currentDirectorySize);
    NEB_ASSERT_NAMED(pwd, "The current directory cannot be read or is longer than 260 bytes.");
    getAbsolutePath(pwd, path, out);
}

void ARXFmDir::getPathTail(std::string& out, char const* base, char const* fullPath)
{
    using std::strlen;
    NEB_ASSERT_NAMED(fullPath, "ARXFmDir::getPathTail - Null full path parameter is not allowed.");
    NEB_ASSERT_NAMED(strlen(fullPath), "ARXFmDir::getPathTail - empty full path parameter is not allowed.");
    std::uint64_t offset = 0;
    if (base)
    {
        std::string directory = base;
        makePathSlashTerminated(directory);
        offset = findDifferentiatingPathOffset(directory.c_str(), fullPath);
    }
    std::string tail;  // base or fullPath may be the storage of out
    if (offset == 0)
        NEBFmDir::splitPath(fullPath, nullptr, &tail);
    else
        tail = fullPath + offset;
    out = std::move(tail);
}

void ARXFmDir::makePathSlashTerminated(std::string& path)
{
    if (!path.empty() && !isPathSeparator(path.back()))
        path += '/';
}

void ARXFmDir::splitPathIntoParts(std::string const& path, ARXFmDirPathParts& parts)
{
    NEB_ASSERT_NAMED(!path.empty(), "Path may not be empty.");
    std::string_view rest = path;
    if (hasDriveLetter(path.c_str()))
    {
        parts.m_drive = {static_cast<char>(std::tolower(toByte(path[0]))), ':'};
        rest.remove_prefix(s_drivePrefixSize);
    }
    // Views, because a copy of the rest for each element would take quadratic time.
    while (!rest.empty())
    {
        std::string_view head;
        std::string_view tail;
        mySplitPath(rest, head, tail);
        if (!tail.empty())
            parts.m_parts.emplace_front(tail);
        bool const isRoot = rest == head;  // only a lone separator is its own head
        if (isRoot)
            parts.m_parts.emplace_front(head);
        rest = isRoot ? std::string_view() : head;
    }
}

void ARXFmDir::mySplitPath(std::string_view& path, std::string_view& head, std::string_view& tail)
{
    NEB_ASSERT_NAMED(!path.empty(), "Path may not be empty.");
    removeTrailingDirectorySeparator(path);
    auto const tailBegin = std::find_if(path.rbegin(), path.rend(), isPathSeparator).base();
    auto const tailStart = static_cast<std::size_t>(tailBegin - path.begin());

    tail = path.substr(tailStart);
    head = path.substr(0, tailStart);
    if (!head.empty())
        removeTrailingDirectorySeparator(head);
}

void ARXFmDir::removeTrailingDirectorySeparator(std::string_view& path)
{
    NEB_ASSERT_NAMED(!path.empty(), "Path may not be empty.");
    while (path.size() > 1 && isPathSeparator(path.back()))
        path.remove_suffix(1);
}
