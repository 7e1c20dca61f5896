// What works on bytes alone: the buffer, the checksum, and the text that stands for bytes.

#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <zlib.h>

#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "NEBCore/NEBUtCrc32.h"
#include "NEBCore/NEBWeb64.h"
#include "support/Words.h"

namespace
{
TEST(NEBByteBuffer, GrowsByItsOwnContentsAndStaysAsItWasWhereItCant)
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

TEST(NEBWeb64, EncodesAndDecodes)
{
    // By RFC 4648, section 10, but for the last one.
    auto rows = table("- -, f Zg, fo Zm8, foo Zm9v, foobar Zm9vYmFy, \xFB\xEF\xFF\xFE --___g");
    rows.push_back({std::string(2, '\0'), "AAA"});
    for (Words const& row : rows)
    {
        std::string text(NEBWeb64EncodedSize(row[0].size(), 0), 'x'), data = "before";
        NEBWeb64Encode(row[0].data(), row[0].size(), text.data(), 0);
        EXPECT_EQ(row[1] + '\0', text);
        EXPECT_TRUE(NEBWeb64Decode(text.data(), text.size() - 1, data));
        EXPECT_EQ(row[0], data);
    }
}

TEST(NEBWeb64, AcceptsNoSecondSpellingOfTheSameBytes)
{
    auto texts = table("Zh Zm9 Z Zg== +- Zm9v/w \xC3\xA4").at(0);
    texts.insert(texts.end(), {" Zg", std::string("Zg") + '\0'});
    for (std::string const& text : texts)
    {
        std::string data = "before";
        EXPECT_FALSE(NEBWeb64Decode(text.data(), text.size(), data)) << text;
        EXPECT_EQ("", data);
    }
}
}  // namespace
