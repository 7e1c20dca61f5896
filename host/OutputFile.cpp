#include "OutputFile.h"

#include <algorithm>
#include <climits>
#include <iostream>

#include "Failure.h"

OutputFile::OutputFile(std::string const& target, unsigned mode)
{
    require(m_file.create(target, mode));
}

void OutputFile::write(char const* data, std::size_t size)
{
    require(m_file.write(data, size) == size);
}

void OutputFile::place()
{
    require(m_file.replace());
}

void OutputFile::placeUnsynced()
{
    require(m_file.replaceUnsynced());
}

void OutputFile::require(bool isDone) const
{
    if (!isDone)
        failed(NEB_HERE, m_file.getFailure());
}

// A pipe takes PIPE_BUF bytes whole or not at all, so that a signal ends a write that waits for a reader. Of
// more bytes a part may be written; the C library then goes on waiting with the rest.
void printBytes(char const* data, std::size_t size)
{
    for (std::size_t offset = 0; offset < size; offset += PIPE_BUF)
        std::cout.write(data + offset,
                        static_cast<std::streamsize>(std::min<std::size_t>(size - offset, PIPE_BUF)));
}
