// Which name of the file system a path stands for, since both / and \ separate on every platform. Any thread
// may call; only std::bad_alloc is raised.

#ifndef OS_OSFILENAME_H
#define OS_OSFILENAME_H

#include <string>

class __attribute__((visibility("default"))) OsFileName
{
public:
    // For what is made: / for every \, so that no new name ever holds a \.
    static std::string forWriting(std::string path);

    // For what should exist already: path itself if something has that name or can't be looked at, otherwise
    // the name for writing.
    static std::string forReading(std::string const& path);
};

#endif
