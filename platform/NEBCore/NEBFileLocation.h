// The place of a throw, an assertion or a rethrow.

#ifndef NEBCORE_NEBFILELOCATION_H
#define NEBCORE_NEBFILELOCATION_H

#include <cstdint>

#define NEB_HERE NEBFileLocation(__FILE__, __LINE__)

struct NEBFileLocation
{
    // file must outlive every exception that names it; __FILE__ does.
    constexpr NEBFileLocation(char const* file, std::int32_t line) : m_file(file), m_line(line) {}

    char const* m_file;
    std::int32_t m_line;
};

#endif
