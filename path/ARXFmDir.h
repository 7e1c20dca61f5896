// One grammar of paths as text, the same on every platform.
//
// A path is a row of bytes in no particular encoding. / and \ are both separators and equivalent; case
// counts. A letter, by isalpha, and ":" in front are a drive prefix, and a path is absolute if a separator
// stands first or right behind that prefix: "C:x" is relative, "//s/x" is absolute and nothing more. Only
// isFile looks at the disk and only the getAbsolutePath without a pwd at the current directory.
//
// Misuse raises NEBAssertError before any out string is touched. There is no state: any number of threads may
// call. An out string may be the storage of an argument.

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
    // A path in elements. An object belongs to one thread at a time. The operations that resolve "." and ".."
    // expect removeCurrentDir first, since a "." would shield the name before it from a "..".
    class ARXIUM_API ARXFmDirPathParts
    {
    public:
        ARXFmDirPathParts();
        ~ARXFmDirPathParts();

        // Whether the element is "/". The root "\" is none to this test, and so has no protection from "..".
        bool isRoot(std::list<std::string>::iterator iter);
        // Whether the element is a ".." with something other than ".." before it, be it the root.
        bool shouldParentDirectoryBeRemoved(std::list<std::string>::iterator iter);

        void removeCurrentDir();
        // Takes each ".." away with the name before it; the ones without a name stay. A ".." that would take
        // away the root "/" is a failed assertion.
        void removeParentDir();
        // Replaces out by the drive prefix and the elements, joined as NEBFmDir::joinPath does.
        void getPath(std::string& out) const;

        std::string m_drive;  // empty, or the letter in lower case and ":"
        // In path order, none empty and none holding a separator but the root, which is one separator, as the
        // path spells it, and can only stand first.
        std::list<std::string> m_parts;
    };

    ARXFmDir();
    virtual ~ARXFmDir();

    // Whether path names a regular file, or a link to one.
    virtual bool isFile(char const* path) const;

    static bool isPathSeparator(char c) { return c == '/' || c == '\\'; }
    static bool hasDriveLetter(char const* path);
    static bool isAbsolutePath(char const* path);

    static bool isEquivalentPathChar(char a, char b);
    // Whether the texts are equal but for the kind of their separators; "a//b" and "a/b" are not.
    static bool isEquivalentPath(char const* path1, char const* path2);
    // The length in bytes of the longest common prefix, which may end within an element.
    static std::uint64_t findDifferentiatingPathOffset(char const* path1, char const* path2);
    // Turns every \ into /.
    static void normalizePathSeparator(std::string& path);

    // The canonical form: the drive letter in lower case, only /, no "." elements, ".." resolved as far as
    // the text allows, no doubled or closing separators; "." where nothing is left. Empty paths and a ".."
    // above the root "/" fail. Needs no look at the disk, and so takes no account of links. "./C:/x" gives
    // "C:/x", whose first name would be a drive the next time.
    static void getNormalizedPath(std::string const& path, std::string& out);

    // Puts path under pwd, unless it is absolute; nothing is normalised. A relative path with a drive prefix
    // must name the drive of pwd, if that has one, and loses the prefix.
    static void getAbsolutePath(char const* pwd, char const* path, std::string& out);
    // The same with the current directory, which must be readable and at most 260 bytes long.
    static void getAbsolutePath(char const* path, std::string& out);

    // The rest of fullPath behind its longest common prefix with the directory base, however short: "/x/y"
    // makes "a/b" of "/a/b". Without a base (null or empty) or a common byte, it is the last element.
    static void getPathTail(std::string& out, char const* base, char const* fullPath);
    // Adds "/" unless path is empty or ends in a separator.
    static void makePathSlashTerminated(std::string& path);

protected:
    // Fills parts, which must be fresh.
    static void splitPathIntoParts(std::string const& path, ARXFmDirPathParts& parts);

private:
    friend struct ARXFmDirSteps;  // the tests' way to the steps below

    // One step from the right: path loses its closing separators; tail is what stands behind its last
    // separator, and head what stands before it, again without closing separators. Both look into path's
    // text. path, head and tail of a root are the root, the root and nothing.
    static void mySplitPath(std::string_view& path, std::string_view& head, std::string_view& tail);
    // A lone separator stays.
    static void removeTrailingDirectorySeparator(std::string_view& path);
};

#endif
