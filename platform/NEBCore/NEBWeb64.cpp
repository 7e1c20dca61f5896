#include "NEBCore/NEBWeb64.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace
{
char constexpr s_alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

// The four digits of 24 bits.
char* putGroup(char* target, int bits)
{
    target[0] = s_alphabet[bits >> 18];
    target[1] = s_alphabet[bits >> 12 & 0x3F];
    target[2] = s_alphabet[bits >> 6 & 0x3F];
    target[3] = s_alphabet[bits & 0x3F];
    return target + 4;
}
}  // namespace

std::size_t NEBWeb64EncodedSize(std::size_t size, int)
{
    std::size_t const rest = size % 3;
    return size / 3 * 4 + (rest == 0 ? 0 : rest + 1) + 1;
}

void NEBWeb64Encode(void const* data, std::size_t size, char* target, int)
{
    auto const* bytes = static_cast<unsigned char const*>(data);
    for (; size >= 3; size -= 3, bytes += 3)
        target = putGroup(target, bytes[0] << 16 | bytes[1] << 8 | bytes[2]);
    if (size > 0)
    {
        char last[4];
        putGroup(last, bytes[0] << 16 | (size == 2 ? bytes[1] << 8 : 0));
        target = std::copy_n(last, size + 1, target);
    }
    *target = '\0';
}

bool NEBWeb64Decode(char const* text, std::size_t length, std::string& data)
{
    std::string decoded;
    std::uint32_t bits = 0;
    int count = 0;
    for (std::size_t i = 0; i < length; ++i)
    {
        auto const* found = static_cast<char const*>(std::memchr(s_alphabet, text[i], sizeof s_alphabet - 1));
        if (!found)
            break;
        bits = bits << 6 | static_cast<std::uint32_t>(found - s_alphabet);
        count += 6;
        if (count >= 8)
        {
            count -= 8;
            decoded += static_cast<char>(bits >> count);
        }
    }

    // Bytes have one text only: its length must fit and its unused bits must be 0.
    bool const valid =
        NEBWeb64EncodedSize(decoded.size(), 0) == length + 1 && (bits & ((1u << count) - 1)) == 0;
    data = valid ? decoded : std::string();
    return valid;
}
