#include "NEBCore/NEBByteBuffer.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "NEBCore/NEBOutOfMemoryError.h"

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
}  // namespace
