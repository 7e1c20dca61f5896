#include "NEBCore/NEBUtCrc32.h"

#include <string>

#include <gtest/gtest.h>
#include <zlib.h>

namespace
{
TEST(NEBUtCrc32, AgreesWithZlibAtEveryLengthAndSplit)
{
    std::string data;
    for (unsigned i = 0; i <= 64; ++i)
    {
        auto const* bytes = reinterpret_cast<Bytef const*>(data.data());
        auto const expected = static_cast<std::uint32_t>(crc32(0, bytes, i));
        for (unsigned split = 0; split <= i; ++split)
        {
            std::uint32_t const first = NEBUtCrc32::crc32(0, data.data(), split);
            EXPECT_EQ(expected, NEBUtCrc32::crc32(first, data.data() + split, i - split))
                << split << " of " << i;
        }
        EXPECT_EQ(expected, NEBUtCrc32::crc32(data.c_str(), 0)) << i;
        data += static_cast<char>(255 - i * 3);
    }
    EXPECT_EQ(0xCBF43926u, NEBUtCrc32::crc32("123456789", 0));
    EXPECT_EQ(7u, NEBUtCrc32::crc32(7, nullptr, 0));
}
}  // namespace
