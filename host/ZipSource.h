// What goes into an archive: the files of a directory tree in the order in which ARXZipFile::addDirectory
// takes them.

#ifndef ARXHOST_ZIPSOURCE_H
#define ARXHOST_ZIPSOURCE_H

#include <cstdint>
#include <string>
#include <vector>

struct ZipSource
{
    // Raises if a directory can't be read. Files whose path contains archive are what the archive leaves out.
    ZipSource(std::string const& directory, std::string const& archive);

    std::vector<std::uint64_t> m_sizes;  // in bytes, of each file that goes in
    std::vector<std::string> m_leftOut;  // the archive's own file is not among them
};

#endif
