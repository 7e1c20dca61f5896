// The test vectors of docs/formats.md.

#include "KRY_Crypto_Interface/KRYSegmentCipher.h"
#include "platform/KRYStarted.h"

namespace
{
std::string bytesOf(std::string const& hex)
{
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

struct KRYFormat : KRYStarted
{
    KRYFormat() { startWithKey(bytesOf("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f")); }
};
}  // namespace

TEST_F(KRYFormat, OfSignaturesIsTheSameOnEveryMachine)
{
    KRYTestSession session("TALM");
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    std::string signature;
    EXPECT_EQ(KRY_SUCCESS, session.protect("report.pdf", &signature));
    EXPECT_EQ(bytesOf("4025e1c1f89a1526cb758f72e8a9932e4614de70ceb606d1bbdf75ce5f7b00b3"), signature);
}

TEST_F(KRYFormat, OfFilesIsTheSameOnEveryMachine)
{
    std::string const header = "4b5259454e4302010001000009f3f508a687d198",
                      salt = "a0a1a2a3a4a5a6a7a8a9aaabacadaeafb0b1b2b3b4b5b6b7b8b9babbbcbdbebf",
                      segment = "52e58354eef27f32809b76699c80a115c10851c22c";
    writeFile(m_folder / "file", bytesOf(header + salt + segment));
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.decipher(m_folder / "file"));
    std::string plain;
    EXPECT_EQ(KRY_SUCCESS, session.readAll(plain));
    EXPECT_EQ(bytesOf("0001020304"), plain);
}

TEST(KRYNonce, HoldsTheWholeNumber)
{
    auto const nonce = KRYSegmentCipher::makeNonce(0x0102030405060708, true);
    EXPECT_EQ(bytesOf("000000010203040506070801"), std::string(nonce.begin(), nonce.end()));
}
