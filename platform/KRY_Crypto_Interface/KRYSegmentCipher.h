// Encrypts and decrypts the segments of one file; KRYFileHeader.h tells the layout. For one thread at a time.

#ifndef KRY_CRYPTO_INTERFACE_KRYSEGMENTCIPHER_H
#define KRY_CRYPTO_INTERFACE_KRYSEGMENTCIPHER_H

#include <cstdint>
#include <memory>
#include <string>

#include <openssl/evp.h>

#include "KRY_Crypto_Interface/KRYFileHeader.h"

class KRYSegmentCipher
{
public:
    KRYSegmentCipher(KRYSecret const& masterKey, KRYFileHeader const& header, std::string const& serviceID);

    // size bytes of data, which may be target, become size + s_tagSize bytes at target.
    void seal(std::uint64_t number, bool last, unsigned char const* data, std::size_t size,
              unsigned char* target);
    // Decrypts size bytes and the tag behind them in their place. False if they are not what seal gave out
    // for this number and place; the bytes must not be used then.
    bool open(std::uint64_t number, bool last, unsigned char* data, std::size_t size);

private:
    void begin(int encrypt, std::uint64_t number, bool last);

    KRYFileHeader::Bytes m_header;
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> m_context;
};

#endif
