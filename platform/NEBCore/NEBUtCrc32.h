// CRC-32 with the polynomial of zip archives (APPNOTE.TXT, 4.4.7) and gzip (RFC 1952, section 8). It finds
// damage by accident; it does not protect against anybody.
//
// Sizes are in bytes. A result can seed the next call, so that pieces have the checksum of the whole; without
// bytes the seed is the result. Nothing is allocated or raised. Any thread may call.
//
// Example:
//     std::uint32_t crc = 0;  // the seed of a new checksum
//     crc = NEBUtCrc32::crc32(crc, "Hello, ", 7);
//     crc = NEBUtCrc32::crc32(crc, "world", 5);  // as of both pieces in one

#ifndef NEBCORE_NEBUTCRC32_H
#define NEBCORE_NEBUTCRC32_H

#include <cstddef>
#include <cstdint>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API NEBUtCrc32
{
public:
    // Over the bytes up to the terminator.
    static std::uint32_t crc32(char const* text, std::uint32_t seed);
    static std::uint32_t crc32(std::uint32_t seed, void const* bytes, std::size_t size);
};

#endif
