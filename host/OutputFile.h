// A file that takes its name, and the place of an older file, only when it is complete and on the disk.

#ifndef ARXHOST_OUTPUTFILE_H
#define ARXHOST_OUTPUTFILE_H

#include <cstddef>
#include <string>

#include "os/OsPlacedFile.h"

class OutputFile
{
public:
    // An older file keeps its permissions; mode is for a new one, as OsPlacedFile takes it. All operations
    // raise NEBException that names the file.
    OutputFile(std::string const& target, unsigned mode);

    // The file until then, for those that write by name.
    std::string const& getPath() const { return m_file.getPath(); }
    void write(char const* data, std::size_t size);
    void place();
    // Doesn't wait for the disk.
    void placeUnsynced();

private:
    void require(bool isDone) const;

    OsPlacedFile m_file;
};

// Writes to standard output.
void printBytes(char const* data, std::size_t size);

#endif
