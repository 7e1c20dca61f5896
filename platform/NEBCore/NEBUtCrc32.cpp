#include "NEBCore/NEBUtCrc32.h"

#include <cstring>

#include <libdeflate.h>

namespace
{
// The remainder of one byte by the reversed polynomial 0xEDB88320.
constexpr std::uint32_t remainder(std::uint32_t value)
{
    for (int bit = 0; bit < 8; ++bit)
        value = value >> 1 ^ ((value & 1) != 0 ? 0xEDB88320u : 0);
    return value;
}

constexpr std::array<std::uint32_t, 256> remainders()
{
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte)
        table[byte] = remainder(byte);
    return table;
}
}  // namespace

std::array<std::uint32_t, 256> const NEBUtCrc32::s_table = remainders();

std::uint32_t NEBUtCrc32::crc32(char const* text, std::uint32_t seed)
{
    return crc32(seed, text, std::strlen(text));
}

std::uint32_t NEBUtCrc32::crc32Long(std::uint32_t seed, void const* bytes, std::size_t size)
{
    return libdeflate_crc32(seed, bytes, size);
}
