#include "NEBCore/NEBUtCrc32.h"

#include <cstring>

#include <libdeflate.h>

std::uint32_t NEBUtCrc32::crc32(char const* text, std::uint32_t seed)
{
    return crc32(seed, text, std::strlen(text));
}

std::uint32_t NEBUtCrc32::crc32(std::uint32_t seed, void const* bytes, std::size_t size)
{
    return size == 0 ? seed : libdeflate_crc32(seed, bytes, size);  // which returns 0 for null bytes
}
