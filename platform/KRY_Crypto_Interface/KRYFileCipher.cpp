#include "KRY_Crypto_Interface/KRYFileCipher.h"

#include <string_view>

#include <openssl/rand.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::string_view s_fixedPart("KRYENC\2\1\0\1\0\0", 12);
constexpr std::size_t s_keyIDSize = 8;
constexpr std::size_t s_saltSize = 32;

// Tells master keys apart and says nothing about them.
std::string keyIDOf(KRYSecret const& masterKey)
{
    KRYSecret const derived(masterKey, "", "KRY key id 2:");
    return std::string(derived.data(), derived.data() + s_keyIDSize);
}

std::string makeHeader(KRYSecret const& masterKey)
{
    std::array<unsigned char, s_saltSize> salt;
    requireCrypto(RAND_bytes(salt.data(), int{s_saltSize}) == 1, "RAND_bytes");
    return std::string(s_fixedPart) + keyIDOf(masterKey) + std::string(salt.begin(), salt.end());
}

KRYSecret const& masterKeyOf(std::string const& header, KRYMasterKeys const& keys)
{
    if (header.compare(0, s_fixedPart.size(), s_fixedPart) != 0)
        throw KRYError(KRY_ERROR_DAMAGED, "the file is not encrypted in a format that is known");
    for (KRYSecret const& key : keys)
        if (header.compare(s_fixedPart.size(), s_keyIDSize, keyIDOf(key)) == 0)
            return key;
    throw KRYError(KRY_ERROR_DAMAGED, "the file was written under a key that the key file does not hold");
}
}  // namespace

KRYFileCipher::KRYFileCipher(KRYMasterKeys const& keys, std::string const& serviceID)
    : KRYFileCipher(makeHeader(keys.front()), keys, serviceID)
{
}

KRYFileCipher::KRYFileCipher(std::string const& header, KRYMasterKeys const& keys,
                             std::string const& serviceID)
    : m_header(header), m_context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free)
{
    requireCrypto(m_context != nullptr, "EVP_CIPHER_CTX_new");
    std::string const salt = header.substr(s_headerSize - s_saltSize);
    KRYSecret const key(masterKeyOf(header, keys), salt, "KRY file 2:" + header + serviceID);
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
    auto const* const header = reinterpret_cast<unsigned char const*>(m_header.data());
    int count = 0;
    requireCrypto(EVP_CipherInit_ex(m_context.get(), nullptr, nullptr, nullptr, nonce.data(), encrypt) == 1 &&
                      EVP_CipherUpdate(m_context.get(), nullptr, &count, header, int{s_headerSize}) == 1,
                  "beginning a segment");
}
