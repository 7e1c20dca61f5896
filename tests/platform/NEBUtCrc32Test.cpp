#include "NEBCore/NEBUtCrc32.h"

#include <string>

#include <gtest/gtest.h>
#include <zlib.h>

namespace
{
TEST(NEBUtCrc32, AgreesWithZlibAtEveryLengthAndSplit)
{
    std::string data;
    for (unsigned i = 0; i <= 64; ++i, data += static_cast<char>(255 - i * 3))
    {
        auto const expected = ::crc32(0, reinterpret_cast<Bytef const*>(data.data()), i);
        EXPECT_EQ(expected, NEBUtCrc32::crc32(data.c_str(), 0)) << i;
        for (unsigned split = 0; split <= i; ++split)
            EXPECT_EQ(expected, NEBUtCrc32::crc32(NEBUtCrc32::crc32(0, data.data(), split),
                                                  data.data() + split, i - split))
                << split << " of " << i;
    }
    EXPECT_EQ(7u, NEBUtCrc32::crc32(7, nullptr, 0));
}
}  // namespace
