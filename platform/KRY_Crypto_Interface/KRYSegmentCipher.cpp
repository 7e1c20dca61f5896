#include "KRY_Crypto_Interface/KRYSegmentCipher.h"

#include "KRY_Crypto_Interface/KRYError.h"

KRYSegmentCipher::KRYSegmentCipher(KRYFileHeader const& header, std::string const& serviceID)
    : m_header(header.getBytes()), m_context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free)
{
    requireCrypto(m_context != nullptr, "EVP_CIPHER_CTX_new");
    KRYSecret key;
    header.deriveFileKey(serviceID, key);
    requireCrypto(EVP_CipherInit_ex(m_context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nullptr, 1) == 1,
                  "EVP_CipherInit_ex");
}

void KRYSegmentCipher::seal(std::uint64_t number, bool last, unsigned char* data, std::size_t size)
{
    begin(1, number, last);
    int count = 0;
    requireCrypto(EVP_CipherUpdate(m_context.get(), data, &count, data, static_cast<int>(size)) == 1 &&
                      EVP_CipherFinal_ex(m_context.get(), data + size, &count) == 1 &&
                      EVP_CIPHER_CTX_ctrl(m_context.get(), EVP_CTRL_AEAD_GET_TAG,
                                          static_cast<int>(KRYFileHeader::s_tagSize), data + size) == 1,
                  "sealing a segment");
}

bool KRYSegmentCipher::open(std::uint64_t number, bool last, unsigned char* data, std::size_t size)
{
    begin(0, number, last);
    int count = 0;
    requireCrypto(EVP_CipherUpdate(m_context.get(), data, &count, data, static_cast<int>(size)) == 1 &&
                      EVP_CIPHER_CTX_ctrl(m_context.get(), EVP_CTRL_AEAD_SET_TAG,
                                          static_cast<int>(KRYFileHeader::s_tagSize), data + size) == 1,
                  "opening a segment");
    return EVP_CipherFinal_ex(m_context.get(), data + size, &count) == 1;
}

// Keeps the key: only the nonce is new for each segment.
void KRYSegmentCipher::begin(int encrypt, std::uint64_t number, bool last)
{
    Nonce const nonce = makeNonce(number, last);
    int count = 0;
    requireCrypto(EVP_CipherInit_ex(m_context.get(), nullptr, nullptr, nullptr, nonce.data(), encrypt) == 1 &&
                      EVP_CipherUpdate(m_context.get(), nullptr, &count, m_header.data(),
                                       static_cast<int>(m_header.size())) == 1,
                  "beginning a segment");
}
