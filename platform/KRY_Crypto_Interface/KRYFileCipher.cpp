#include "KRY_Crypto_Interface/KRYFileCipher.h"

#include <algorithm>

#include <openssl/rand.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
using Header = KRYFileCipher::Header;
using KeyID = std::array<unsigned char, 8>;

constexpr std::array<unsigned char, 12> s_fixedPart{'K', 'R', 'Y', 'E', 'N', 'C', 2, 1, 0, 1, 0, 0};
constexpr std::size_t s_saltOffset = s_fixedPart.size() + sizeof(KeyID);
constexpr std::size_t s_saltSize = KRYFileCipher::s_headerSize - s_saltOffset;

// Tells master keys apart and says nothing about them.
KeyID keyIDOf(KRYSecret const& masterKey)
{
    KRYSecret const derived(masterKey, "", "KRY key id 2:");
    KeyID id;
    std::copy_n(derived.data(), id.size(), id.begin());
    return id;
}

Header makeHeader(KRYSecret const& masterKey)
{
    Header header;
    KeyID const id = keyIDOf(masterKey);
    std::copy(id.begin(), id.end(), std::copy(s_fixedPart.begin(), s_fixedPart.end(), header.begin()));
    requireCrypto(RAND_bytes(&header[s_saltOffset], int{s_saltSize}) == 1, "RAND_bytes");
    return header;
}

KRYSecret const& masterKeyOf(Header const& header, KRYMasterKeys const& keys)
{
    if (!std::equal(s_fixedPart.begin(), s_fixedPart.end(), header.begin()))
        throw KRYError(KRY_ERROR_DAMAGED, "the file is not encrypted in a format that is known");
    for (KRYSecret const& key : keys)
    {
        KeyID const id = keyIDOf(key);
        if (std::equal(id.begin(), id.end(), header.begin() + s_fixedPart.size()))
            return key;
    }
    throw KRYError(KRY_ERROR_DAMAGED, "the file was written under a key that the key file does not hold");
}
}  // namespace

KRYFileCipher::KRYFileCipher(KRYMasterKeys const& keys, std::string const& serviceID)
    : KRYFileCipher(makeHeader(keys.front()), keys, serviceID)
{
}

KRYFileCipher::KRYFileCipher(Header const& header, KRYMasterKeys const& keys, std::string const& serviceID)
    : m_header(header), m_context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free)
{
    requireCrypto(m_context != nullptr, "EVP_CIPHER_CTX_new");
    std::string const bytes(m_header.begin(), m_header.end());
    std::string const salt = bytes.substr(s_saltOffset);
    KRYSecret const key(masterKeyOf(header, keys), salt, "KRY file 2:" + bytes + serviceID);
    requireCrypto(EVP_CipherInit_ex(m_context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nullptr, 1) == 1,
                  "EVP_CipherInit_ex");
}

void KRYFileCipher::seal(std::uint64_t number, bool last, unsigned char* data, std::size_t size)
{
    begin(1, number, last);
    int count = 0;
    requireCrypto(
        EVP_CipherUpdate(m_context.get(), data, &count, data, static_cast<int>(size)) == 1 &&
            EVP_CipherFinal_ex(m_context.get(), data + size, &count) == 1 &&
            EVP_CIPHER_CTX_ctrl(m_context.get(), EVP_CTRL_AEAD_GET_TAG, int{s_tagSize}, data + size) == 1,
        "sealing a segment");
}

bool KRYFileCipher::open(std::uint64_t number, bool last, unsigned char* data, std::size_t size)
{
    begin(0, number, last);
    int count = 0;
    requireCrypto(
        EVP_CipherUpdate(m_context.get(), data, &count, data, static_cast<int>(size)) == 1 &&
            EVP_CIPHER_CTX_ctrl(m_context.get(), EVP_CTRL_AEAD_SET_TAG, int{s_tagSize}, data + size) == 1,
        "opening a segment");
    return EVP_CipherFinal_ex(m_context.get(), data + size, &count) == 1;
}

// Keeps the key: only the nonce is new for each segment.
void KRYFileCipher::begin(int encrypt, std::uint64_t number, bool last)
{
    Nonce const nonce = makeNonce(number, last);
    int count = 0;
    requireCrypto(
        EVP_CipherInit_ex(m_context.get(), nullptr, nullptr, nullptr, nonce.data(), encrypt) == 1 &&
            EVP_CipherUpdate(m_context.get(), nullptr, &count, m_header.data(), int{s_headerSize}) == 1,
        "beginning a segment");
}
