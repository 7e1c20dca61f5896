// A file or standard input, read in pieces.

#ifndef ARXHOST_INPUTFILE_H
#define ARXHOST_INPUTFILE_H

#include <cstddef>
#include <string>
#include <vector>

#include "os/OsFile.h"

class InputFile
{
public:
    // The path "-" means standard input. Raises NEBException that names the path, and Interrupted while it
    // waits for a pipe.
    explicit InputFile(std::string const& path);

    // The next bytes, at least one; none at the end. Valid until the next call. Raises as the constructor.
    std::vector<char>& readPiece();

private:
    std::string m_name;
    OsFile m_file;  // closed for standard input
    std::vector<char> m_piece;
};

#endif
