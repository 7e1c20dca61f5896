// The test vectors of docs/formats.md.

#include <iomanip>
#include <numeric>
#include <sstream>

#include <openssl/rand.h>
#include <openssl/sha.h>

#include "KRY_Crypto_Interface/KRYFileCipher.h"
#include "platform/KRYStarted.h"

namespace
{
bool s_isSaltKnown = false;

template <class Bytes>
std::string hex(Bytes const& bytes)
{
    std::ostringstream text;
    for (auto const byte : bytes)
        text << std::hex << std::setw(2) << std::setfill('0') << int{static_cast<unsigned char>(byte)};
    return text.str();
}

struct KRYFormat : KRYStarted
{
    KRYFormat()
    {
        startWithKey(bytesOf(32));
        s_isSaltKnown = true;
    }
    ~KRYFormat() override { s_isSaltKnown = false; }
};
}  // namespace

// The program's own function takes the place of OpenSSL's.
__attribute__((visibility("default"))) int RAND_bytes(unsigned char* target, int size)
{
    if (!s_isSaltKnown)
        return RAND_bytes_ex(nullptr, target, static_cast<std::size_t>(size), 0);
    std::iota(target, target + size, static_cast<unsigned char>(0xA0));
    return 1;
}

struct SignatureRow
{
    char const* m_name;
    char const* m_data;
    char const* m_signature;
};

TEST_F(KRYFormat, SignaturesAreTheSameOnEveryMachine)
{
    SignatureRow const rows[] = {
        {"Name", "report.pdf", "4025e1c1f89a1526cb758f72e8a9932e4614de70ceb606d1bbdf75ce5f7b00b3"},
        {"NameThenSession", "report.pdf/0123456789abcdef",
         "3ef8347296f0bb5edcc12d800c4502d11637b9fb4e3c9b877eb87e224657b326"},
    };
    KRYTestSession session("TALM");
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    for (SignatureRow const& row : rows)
    {
        std::string signature;
        EXPECT_EQ(KRY_SUCCESS, session.protect(row.m_data, &signature));
        EXPECT_EQ(row.m_signature, hex(signature)) << row.m_name;
    }
}

struct FileRow
{
    char const* m_name;
    std::size_t m_size;
    char const* m_sha256;
};

TEST_F(KRYFormat, SealedFilesAreTheSameOnEveryMachine)
{
    FileRow const rows[] = {
        {"Empty", 0, "bc2b4e00fe65e3de0eb107b1a285ea081640214418d9d2b6dacc4db876059bb2"},
        {"FiveBytes", 5, "16e1d2f446ed1a51f4944b088a38751ff9ff21f94e042f6047a0778de405e143"},
        {"OneFullSegment", 65536, "c178b6fc5ab328120b8154d34109f5bd160f92bb89e3c43b89be60243c19bb77"},
        {"OneByteMore", 65537, "6f4239f5999d45fa7afe80eca5353c676b9e68b48a27e0b798768eef72aeff79"},
    };
    for (FileRow const& row : rows)
    {
        KRYTestSession session;
        ASSERT_EQ(KRY_SUCCESS, session.cipher(m_folder / row.m_name));
        EXPECT_EQ(KRY_SUCCESS, session.protect(bytesOf(row.m_size)));
        EXPECT_EQ(KRY_SUCCESS, session.finish());
        std::string const sealed = readAll(m_folder / row.m_name);
        std::array<unsigned char, SHA256_DIGEST_LENGTH> digest;
        SHA256(reinterpret_cast<unsigned char const*>(sealed.data()), sealed.size(), digest.data());
        EXPECT_EQ(row.m_sha256, hex(digest)) << row.m_name;
    }
}

TEST(KRYNonce, HoldsTheWholeNumber)
{
    EXPECT_EQ("000000010203040506070801", hex(KRYFileCipher::makeNonce(0x0102030405060708, true)));
}
