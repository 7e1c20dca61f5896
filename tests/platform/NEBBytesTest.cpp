// The byte buffer, the checksum and the text form of bytes.

#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <zlib.h>

#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "NEBCore/NEBUtCrc32.h"
#include "NEBCore/NEBWeb64.h"

namespace
{
TEST(NEBByteBuffer, KeepsItsBytesAsItGrowsAndFails)
{
    NEBByteBuffer buffer(256, 256);
    buffer.appendChars(nullptr, 0);
    std::string expected;
    for (int i = 0; i < 200; ++i, expected += "abcde")
        (buffer << 'a' << "bc").appendChars("de", 2);
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

struct Web64Row
{
    std::string m_bytes;
    std::string m_text;
};

TEST(NEBWeb64, EncodesAsTheStandardDoes)
{
    Web64Row const rows[] = {{"", ""},
                             {"f", "Zg"},
                             {"fo", "Zm8"},
                             {"foobar", "Zm9vYmFy"},
                             {"\xFB\xEF\xFF\xFE", "--___g"},
                             {std::string(2, '\0'), "AAA"}};
    for (Web64Row const& row : rows)
    {
        std::string text(NEBWeb64EncodedSize(row.m_bytes.size(), 0), 'x'), data = "before";
        NEBWeb64Encode(row.m_bytes.data(), row.m_bytes.size(), text.data(), 0);
        EXPECT_EQ(row.m_text + '\0', text);
        EXPECT_TRUE(NEBWeb64Decode(text.data(), text.size() - 1, data));
        EXPECT_EQ(row.m_bytes, data);
    }
}

TEST(NEBWeb64, RefusesASecondTextOfTheSameBytes)
{
    for (std::string const text : {"Zh", "Zm9", "Z", "Zg==", "\xC3\xA4"})
    {
        std::string data = "before";
        EXPECT_FALSE(NEBWeb64Decode(text.data(), text.size(), data)) << text;
        EXPECT_EQ("", data);
    }
}
}  // namespace
