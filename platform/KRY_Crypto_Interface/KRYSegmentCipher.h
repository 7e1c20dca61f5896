// Encrypts and decrypts the segments of one file by AES-256-GCM (NIST SP 800-38D). For one thread at a time.

#ifndef KRY_CRYPTO_INTERFACE_KRYSEGMENTCIPHER_H
#define KRY_CRYPTO_INTERFACE_KRYSEGMENTCIPHER_H

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include <openssl/evp.h>

#include "KRY_Crypto_Interface/KRYFileHeader.h"

class KRYSegmentCipher
{
public:
    using Nonce = std::array<unsigned char, 12>;

    KRYSegmentCipher(KRYFileHeader const& header, std::string const& serviceID);

    // Encrypts size bytes in their place and adds the tag after them: s_tagSize bytes more.
    void seal(std::uint64_t number, bool last, unsigned char* data, std::size_t size);
    // Decrypts size bytes, which the tag follows, in their place. Returns false if they are not what seal
    // made for this number and place; the bytes must not be used then.
    bool open(std::uint64_t number, bool last, unsigned char* data, std::size_t size);

    KRYFileHeader::Bytes const& getHeader() const { return m_header; }

    // Three bytes of 0, the segment's number from 0 in eight bytes, big endian, and 1 for the last segment,
    // otherwise 0.
    static Nonce makeNonce(std::uint64_t number, bool last)
    {
        Nonce nonce{};
        for (std::size_t i = 0; i < sizeof number; ++i)
            nonce[10 - i] = static_cast<unsigned char>(number >> (8 * i));
        nonce[11] = last ? 1 : 0;
        return nonce;
    }

private:
    void begin(int encrypt, std::uint64_t number, bool last);

    KRYFileHeader::Bytes m_header;
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> m_context;
};

#endif
