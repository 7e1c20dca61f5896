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
TEST(NEBByteBuffer, GrowsByItsOwnContents)
{
    NEBByteBuffer buffer(4, 4);
    buffer.appendChars(nullptr, 0);
    buffer << 'a' << "bc";
    std::string expected = "abc";
    for (; expected.size() < 1000; expected += expected.substr(1))
        buffer.appendChars(buffer.str() + 1, buffer.pcount() - 1);
    for (std::size_t const size : {SIZE_MAX, SIZE_MAX - 2, SIZE_MAX / 2 + 1})
    {
        EXPECT_THROW(buffer.appendChars("x", size), NEBOutOfMemoryError) << size;
        EXPECT_THROW(buffer.reserve(size), NEBOutOfMemoryError) << size;
        EXPECT_THROW(buffer.setLength(size), NEBOutOfMemoryError) << size;
    }
    EXPECT_EQ(expected, std::string(buffer.str(), buffer.pcount()));
    char const* const room = buffer.str();
    buffer.reset();
    EXPECT_EQ(0u, buffer.pcount());
    EXPECT_EQ(room, (buffer << "x").str());
}

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
                             {"foo", "Zm9v"},
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
    for (std::string const text : {"Zh", "Zm9", "Z", "Zg==", "+-", "Zm9v/w", "\xC3\xA4", " Zg", "Zg "})
    {
        std::string data = "before";
        EXPECT_FALSE(NEBWeb64Decode(text.data(), text.size(), data)) << text;
        EXPECT_EQ("", data);
    }
    std::string data;
    EXPECT_FALSE(NEBWeb64Decode("Zg", 3, data)) << "with its terminator";
}
}  // namespace
