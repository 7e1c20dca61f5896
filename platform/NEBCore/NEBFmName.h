// Which name of the file system a path stands for, since both / and \ separate on every platform. Internal to
// the file services.

#ifndef NEBCORE_NEBFMNAME_H
#define NEBCORE_NEBFMNAME_H

#include <string>

class NEBFmName
{
public:
    // For making files and directories: / for every \, so that nothing with a \ in its name is ever made.
    static std::string forWriting(std::string path);

    // For what is there already: path as it stands if something has that name or can't be looked at,
    // otherwise the name for writing.
    static std::string forReading(std::string const& path);
};

#endif
