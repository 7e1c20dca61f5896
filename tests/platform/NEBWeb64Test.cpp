#include "NEBCore/NEBWeb64.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace
{
// The first seven by RFC 4648, section 10.
std::pair<std::string, char const*> const s_web64Cases[] = {{"", ""},
                                                            {"f", "Zg"},
                                                            {"fo", "Zm8"},
                                                            {"foo", "Zm9v"},
                                                            {"foob", "Zm9vYg"},
                                                            {"fooba", "Zm9vYmE"},
                                                            {"foobar", "Zm9vYmFy"},
                                                            {{"\0\0", 2}, "AAA"},
                                                            {"\xFB\xEF\xFF\xFE", "--___g"}};

TEST(NEBWeb64, EncodesAndDecodes)
{
    for (auto const& [bytes, expected] : s_web64Cases)
    {
        std::vector<char> text(NEBWeb64EncodedSize(bytes.size(), 0), 'x');
        NEBWeb64Encode(bytes.data(), bytes.size(), text.data(), 0);
        EXPECT_STREQ(expected, text.data());
        EXPECT_EQ('\0', text.back());
        std::string data = "before";
        EXPECT_TRUE(NEBWeb64Decode(text.data(), text.size() - 1, data));
        EXPECT_EQ(bytes, data);
    }
}

TEST(NEBWeb64, AcceptsNoSecondSpellingOfTheSameBytes)
{
    for (std::string const text :
         {"Zh", "Zm9", "Z", "Zm9vY", "Zg==", "Zg=", " Zg", "Zg\n", "+-", "Zm9v/w", "\xC3\xA4"})
    {
        std::string data = "before";
        EXPECT_FALSE(NEBWeb64Decode(text.data(), text.size(), data)) << text;
        EXPECT_EQ("", data);
    }
    std::string data;
    EXPECT_FALSE(NEBWeb64Decode("Zg", 3, data)) << "the terminator is no digit";
}
}  // namespace
