// An archive to read from, named by a path or "-" for standard input.

#ifndef ARXHOST_ARCHIVEINPUT_H
#define ARXHOST_ARCHIVEINPUT_H

#include <memory>
#include <string>

#include "zip/ARXZipInputStream.h"

class ArchiveInput
{
public:
    // Standard input is read in place where it can seek, else into memory first. Raises what
    // ARXZipInputStream raises.
    explicit ArchiveInput(std::string const& path);

    ARXZipInputStream& getStream() { return *m_stream; }

private:
    std::string m_bytes;  // of an archive in memory; the stream reads from it
    std::unique_ptr<ARXZipInputStream> m_stream;
};

// Text as it may go to a terminal: control bytes become \xNN.
std::string printable(std::string const& text);

#endif
