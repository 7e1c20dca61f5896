// Directory and path services. Static, without state: any number of threads may call at once.
//
// Both / and \ are separators: what is read is looked up under its literal name first, then with / for every
// \, and what is made gets / for every \. The text operations never look at the disk; the others tell failure
// by their result and raise nothing but std::bad_alloc.

#ifndef NEBCORE_NEBFMDIR_H
#define NEBCORE_NEBFMDIR_H

#include <string>
#include <vector>

#include "NEBCore/NEBCoreExport.h"

class I18NString;

class NEBCORE_API NEBFmDir
{
public:
    // Types for exists.
    static int constexpr s_regularFile = 0x8000;
    static int constexpr s_directory = 0x4000;

    // Returns whether path names something of that type; links are followed. A path that is null, missing or
    // unreachable gives 0.
    static int exists(char const* path, int mode);

    // Splits behind the last separator. The file part of "a/" is empty, the directory part of "x" too,
    // that of "/x" is "/". Either out may be null, and both may be the storage of path.
    static void splitPath(std::string const& path, std::string* directory, std::string* file);

    // Appends name, behind a "/" unless base is empty or ends in a separator.
    static void joinPath(std::string& base, std::string const& name);
    static void joinPath(I18NString& base, I18NString const& name);

    // Makes the directory and those above it, with mode 0777 less the umask. 0 if path is no directory
    // afterwards; one that is there already counts as made, also by another process in between. The empty
    // path is the current directory.
    static int createRecursiveDir(std::string const& path);

    // Replaces files and dirs (each may be null) by names sorted by byte: regular files and links to such,
    // and real directories; without "." and "..", and without anything else, such as pipes and links that
    // lead nowhere. 0 if dirName (null included) can't be read to its end; the lists are then empty.
    static int readDir(char const* dirName, std::vector<std::string>* files, void*,
                       std::vector<std::string>* dirs, void*);

    // Makes path absolute and canonical in place: links resolved, no ".", ".." and closing separator, also
    // where its last parts do not exist yet. An empty path stays empty. One that the system refuses to
    // resolve (a loop of links, no permission) becomes only absolute, and where there is no current directory
    // either, it begins with "./", so that its directory part is never empty.
    static void resolveEffectivePath(std::string& path);
};

#endif
