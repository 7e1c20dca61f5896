// The test vectors of docs/formats.md.

#include <iomanip>
#include <sstream>

#include <openssl/rand.h>
#include <openssl/sha.h>

#include "KRY_Crypto_Interface/KRYFileCipher.h"
#include "platform/KRYStarted.h"
#include "support/Rows.h"
#include "support/TemporaryFolder.h"

namespace
{
bool s_isSaltKnown = false;

std::string bytesFrom(int first, std::size_t count, int modulus = 256)
{
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] =
            static_cast<char>((static_cast<std::size_t>(first) + i) % static_cast<std::size_t>(modulus));
    return bytes;
}

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
        startWithKey(bytesFrom(0, 32));
        s_isSaltKnown = true;
    }
    ~KRYFormat() override { s_isSaltKnown = false; }
};

struct SignatureCase
{
    char const* m_name;
    char const* m_data;
    char const* m_signature;
};
struct KRYSignature : KRYFormat, testing::WithParamInterface<SignatureCase>
{
};
SignatureCase const s_signatures[] = {
    {"Name", "report.pdf", "4025e1c1f89a1526cb758f72e8a9932e4614de70ceb606d1bbdf75ce5f7b00b3"},
    {"NameThenSession", "report.pdf/0123456789abcdef",
     "3ef8347296f0bb5edcc12d800c4502d11637b9fb4e3c9b877eb87e224657b326"},
};

struct FileCase
{
    char const* m_name;
    std::size_t m_size;
    char const* m_sha256;
};
struct KRYSealedFile : KRYFormat, testing::WithParamInterface<FileCase>
{
};
FileCase const s_files[] = {
    {"Empty", 0, "bc2b4e00fe65e3de0eb107b1a285ea081640214418d9d2b6dacc4db876059bb2"},
    {"FiveBytes", 5, "16e1d2f446ed1a51f4944b088a38751ff9ff21f94e042f6047a0778de405e143"},
    {"OneFullSegment", 65536, "c178b6fc5ab328120b8154d34109f5bd160f92bb89e3c43b89be60243c19bb77"},
    {"OneByteMore", 65537, "6f4239f5999d45fa7afe80eca5353c676b9e68b48a27e0b798768eef72aeff79"},
};
}  // namespace

// The program's own function takes the place of OpenSSL's.
__attribute__((visibility("default"))) int RAND_bytes(unsigned char* target, int size)
{
    if (!s_isSaltKnown)
        return RAND_bytes_ex(nullptr, target, static_cast<std::size_t>(size), 0);
    std::string const salt = bytesFrom(0xA0, static_cast<std::size_t>(size));
    std::copy(salt.begin(), salt.end(), target);
    return 1;
}

TEST_P(KRYSignature, IsTheSameOnEveryMachine)
{
    KRYTestSession session("TALM");
    std::string signature;
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ(KRY_SUCCESS, session.protect(GetParam().m_data, &signature));
    EXPECT_EQ(GetParam().m_signature, hex(signature));
}
INSTANTIATE_TEST_SUITE_P(Vectors, KRYSignature, testing::ValuesIn(s_signatures), RowName());

TEST_P(KRYSealedFile, IsTheSameOnEveryMachine)
{
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.cipher(m_folder / "file"));
    EXPECT_EQ(KRY_SUCCESS, session.protect(bytesFrom(0, GetParam().m_size, 251)));
    EXPECT_EQ(KRY_SUCCESS, session.finish());
    std::string const sealed = readAll(m_folder / "file");
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest;
    SHA256(reinterpret_cast<unsigned char const*>(sealed.data()), sealed.size(), digest.data());
    EXPECT_EQ(GetParam().m_sha256, hex(digest));
}
INSTANTIATE_TEST_SUITE_P(Vectors, KRYSealedFile, testing::ValuesIn(s_files), RowName());

TEST(KRYNonce, HoldsTheWholeNumber)
{
    EXPECT_EQ("000000010203040506070801", hex(KRYFileCipher::makeNonce(0x0102030405060708, true)));
}
