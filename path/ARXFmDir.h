// One grammar of paths as text, the same on every platform.
//
// A path is bytes in any encoding; lengths and offsets are bytes. "/" and "\" are equivalent separators, and
// case counts. A letter (by std::isalpha) and ":" at the start are a drive prefix. A path is absolute if a
// separator comes first or right after the drive prefix: "C:x" is relative, and "//s/x" is absolute like
// "/s/x". Only isFile looks at the disk, and only getAbsolutePath without a pwd asks for the current
// directory.
//
// Misuse raises NEBAssertError and leaves the out string alone, which may be the storage of an argument. Any
// number of threads may call the operations.
//
// Example:
//     std::string path;
//     ARXFmDir::getAbsolutePath("C:/data", "reports\\.\\2007\\", path);  // "C:/data/reports\.\2007\"
//     ARXFmDir::getNormalizedPath(path, path);                           // "c:/data/reports/2007"
//     ARXFmDir::getPathTail(path, "c:/data", path.c_str());              // "reports/2007"

#ifndef ARXIUM_PATH_ARXFMDIR_H
#define ARXIUM_PATH_ARXFMDIR_H

#include <cstdint>
#include <list>
#include <string>
#include <string_view>

#include "frame/ArxiumExport.h"

class ARXIUM_API ARXFmDir
{
public:
    // A path as a list of elements. An object belongs to one thread at a time.
    class ARXIUM_API ARXFmDirPathParts
    {
    public:
        ARXFmDirPathParts();
        ~ARXFmDirPathParts();

        // Whether the element is "/". The root "\" does not count, so ".." can remove it.
        bool isRoot(std::list<std::string>::iterator iter);
        // Whether the element is "..", has an element before it, and that one is not "..".
        bool shouldParentDirectoryBeRemoved(std::list<std::string>::iterator iter);

        // Removes every ".".
        void removeCurrentDir();
        // Removes each ".." with the name before it, so call removeCurrentDir first. A ".." with nothing or
        // another ".." before it stays; one after the root "/" raises NEBAssertError.
        void removeParentDir();
        // Replaces out by the drive prefix and the elements, joined by NEBFmDir::joinPath.
        void getPath(std::string& out) const;

        std::string m_drive;  // empty, or the letter in lower case and ":"
        // In path order, none empty. Only the first can be a separator: the root as the path spells it.
        std::list<std::string> m_parts;
    };

    ARXFmDir();
    virtual ~ARXFmDir();

    // Whether path names a regular file or a link to one.
    virtual bool isFile(char const* path) const;

    static bool isPathSeparator(char c) { return c == '/' || c == '\\'; }
    static bool hasDriveLetter(char const* path);
    static bool isAbsolutePath(char const* path);

    static bool isEquivalentPathChar(char a, char b);
    // Whether the texts are equal except for the kind of their separators. "a//b" and "a/b" are not.
    static bool isEquivalentPath(char const* path1, char const* path2);
    // The length of the longest common prefix, which may end in the middle of an element.
    static std::uint64_t findDifferentiatingPathOffset(char const* path1, char const* path2);
    // Replaces every "\" by "/".
    static void normalizePathSeparator(std::string& path);

    // The canonical form: drive letter in lower case, only "/", no ".", no doubled or trailing separators,
    // and ".." resolved as far as the text allows; "." if nothing is left. Links are not followed. An empty
    // path and a ".." above the root "/" raise NEBAssertError. The result is its own canonical form, except
    // that "./C:/x" gives "C:/x", which now has a drive prefix.
    static void getNormalizedPath(std::string const& path, std::string& out);

    // Puts path under pwd unless path is absolute; nothing is normalised. If both have a drive prefix, path
    // loses its own, and a relative path for another drive raises NEBAssertError.
    static void getAbsolutePath(char const* pwd, char const* path, std::string& out);
    // The same under the current directory, which must be readable and have at most 260 bytes.
    static void getAbsolutePath(char const* path, std::string& out);

    // Removes the longest common prefix with the directory base, however short: base "/x/y" leaves "a/b" of
    // "/a/b". If base is null or the prefix is empty, out is the last element of fullPath.
    static void getPathTail(std::string& out, char const* base, char const* fullPath);
    // Appends "/" unless path is empty or ends in a separator.
    static void makePathSlashTerminated(std::string& path);

protected:
    // Fills parts, which must be new.
    static void splitPathIntoParts(std::string const& path, ARXFmDirPathParts& parts);

private:
    // One step from the right: tail is what follows the last separator of path, head what precedes it, all
    // three without trailing separators. If path is a root, head is the root and tail is empty.
    static void mySplitPath(std::string_view& path, std::string_view& head, std::string_view& tail);
    // A path that is one separator stays.
    static void removeTrailingDirectorySeparator(std::string_view& path);
};

#endif
