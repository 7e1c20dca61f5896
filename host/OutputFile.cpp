#include "OutputFile.h"

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

void printBytes(char const* data, std::size_t size)
{
    std::cout.write(data, static_cast<std::streamsize>(size));
}
