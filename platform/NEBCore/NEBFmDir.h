// Directory and path services. Any thread may call: there is no state.
//
// Both / and \ separate. What exists is looked up under its literal name first, then with / for every \; what
// is made has / for every \. splitPath and joinPath never look at the disk; the others return failures and
// raise only std::bad_alloc.

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

    // Splits after the last separator. The file of "a/" is empty, the directory of "x" too, that of "/x" is
    // "/". directory and file may be null, and either may be path itself.
    static void splitPath(std::string const& path, std::string* directory, std::string* file);

    // Appends name, after a "/" unless base is empty or ends in a separator.
    static void joinPath(std::string& base, std::string const& name);
    static void joinPath(I18NString& base, I18NString const& name);

    // Makes the directory and those above it, with mode 0777 less the umask. Returns 0 if path is not a
    // directory afterwards; one that existed counts as made. The empty path is the current directory.
    static int createRecursiveDir(std::string const& path);

    // Replaces files by the names of regular files and links to such, and dirs by those of directories, but
    // not of links to them nor of "." and ".."; both are sorted by byte, and each may be null. Anything else
    // is left out. Returns 0, with empty lists, if dirName is null or can't be read to its end.
    static int readDir(char const* dirName, std::vector<std::string>* files, void*,
                       std::vector<std::string>* dirs, void*);

    // Makes path absolute and canonical: links resolved, without ".", ".." and a final separator; its last
    // parts need not exist. An empty path stays empty. A path that the system can't resolve (a loop of links,
    // no permission) only becomes absolute. If there is no current directory, "./" is put before a relative
    // path, so that its directory is never empty.
    static void resolveEffectivePath(std::string& path);
};

#endif
