// Narrowing of sizes. A value that doesn't fit raises NEBException with the value, at the caller's file and
// line.

#ifndef NEBCORE_NEBDOWNCASTSIZE_H
#define NEBCORE_NEBDOWNCASTSIZE_H

#include <cstddef>
#include <cstdint>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API NEBDowncastSize
{
public:
    static std::uint32_t uint32(std::size_t value, char const* file, std::int32_t line)
    {
        return value <= UINT32_MAX ? static_cast<std::uint32_t>(value) : (raise(value, file, line), 0);
    }

    static std::int32_t int32(std::size_t value, char const* file, std::int32_t line)
    {
        return value <= INT32_MAX ? static_cast<std::int32_t>(value) : (raise(value, file, line), 0);
    }

private:
    [[noreturn]] static void raise(std::size_t value, char const* file, std::int32_t line);
};

#endif
