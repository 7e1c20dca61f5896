#include "NEBCore/NEBWeb64.h"

#include <cstdint>
#include <cstring>

namespace
{
char constexpr s_alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
}  // namespace

std::size_t NEBWeb64EncodedSize(std::size_t size, int)
{
    std::size_t const rest = size % 3;
    return size / 3 * 4 + (rest == 0 ? 0 : rest + 1) + 1;
}

void NEBWeb64Encode(void const* data, std::size_t size, char* target, int)
{
    auto const* const bytes = static_cast<unsigned char const*>(data);
    std::uint32_t bits = 0;
    int count = 0;  // of the lowest bits that are not written yet
    for (std::size_t i = 0; i < size; ++i)
    {
        bits = bits << 8 | bytes[i];
        for (count += 8; count >= 6; count -= 6)
            *target++ = s_alphabet[bits >> (count - 6) & 0x3F];
    }
    if (count > 0)
        *target++ = s_alphabet[bits << (6 - count) & 0x3F];
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
