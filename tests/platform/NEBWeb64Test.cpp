#include "NEBCore/NEBWeb64.h"

#include <gtest/gtest.h>

#include "support/Words.h"

namespace
{
// By RFC 4648, section 10, but for the last one.
char const s_web64Cases[] =
    "- -, f Zg, fo Zm8, foo Zm9v, foob Zm9vYg, fooba Zm9vYmE, foobar Zm9vYmFy, \xFB\xEF\xFF\xFE --___g";

TEST(NEBWeb64, EncodesAndDecodes)
{
    auto rows = table(s_web64Cases);
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
    auto texts = table("Zh Zm9 Z Zm9vY Zg== Zg= +- Zm9v/w \xC3\xA4").at(0);
    texts.insert(texts.end(), {" Zg", "Zg\n", std::string("Zg") + '\0'});
    for (std::string const& text : texts)
    {
        std::string data = "before";
        EXPECT_FALSE(NEBWeb64Decode(text.data(), text.size(), data)) << text;
        EXPECT_EQ("", data);
    }
}
}  // namespace
