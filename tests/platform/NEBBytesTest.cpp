// The byte buffer and the checksum.

#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <zlib.h>

#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "NEBCore/NEBUtCrc32.h"

namespace
{
TEST(NEBByteBuffer, NeverLosesBytes)
{
    NEBByteBuffer buffer(256, 256);
    buffer.appendChars(nullptr, 0);
    std::string expected;
    for (int i = 0; i < 200; ++i)
    {
        (buffer << 'a' << "bc").appendChars("de", 2);
        expected += "abcde";
    }
    EXPECT_THROW(buffer.appendChars("x", SIZE_MAX - 2), NEBOutOfMemoryError);
    EXPECT_THROW(buffer.setLength(SIZE_MAX / 2 + 1), NEBOutOfMemoryError);
    EXPECT_EQ(expected, std::string(buffer.str(), buffer.pcount()));
}

TEST(NEBUtCrc32, AgreesWithZlibInPieces)
{
    std::string const data = "123456789";
    auto const expected = ::crc32(0, reinterpret_cast<Bytef const*>(data.data()), 9);
    EXPECT_EQ(expected, NEBUtCrc32::crc32("6789", NEBUtCrc32::crc32(0, data.data(), 5)));
    EXPECT_EQ(7u, NEBUtCrc32::crc32(7, nullptr, 0));
}
}  // namespace
