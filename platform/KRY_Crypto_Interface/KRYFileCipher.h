// Encrypts and decrypts the segments of one file by AES-256-GCM (NIST SP 800-38D), under a key that belongs
// to the file's header. For one thread at a time. docs/formats.md has the layout of the whole file and test
// vectors.
//
//     offset size
//        0     6  "KRYENC"
//        6     1  version, 2
//        7     1  algorithm, 1: AES-256-GCM under a key by HKDF with SHA-256
//        8     4  bytes of plain data in a full segment, big endian, 65536
//       12     8  key id of the master key
//       20    32  salt, random for each file
//       52        segments
//
// A segment is its encrypted data and a tag of 16 bytes. All are full except the last, which may be full too
// and is there even if it is empty. Each segment authenticates the header too.

#ifndef KRY_CRYPTO_INTERFACE_KRYFILECIPHER_H
#define KRY_CRYPTO_INTERFACE_KRYFILECIPHER_H

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYFileCipher
{
public:
    static constexpr std::size_t s_headerSize = 52;
    static constexpr std::size_t s_segmentSize = 65536;
    static constexpr std::size_t s_tagSize = 16;
    using Nonce = std::array<unsigned char, 12>;

    // For a new file, with a fresh salt, under the first key.
    KRYFileCipher(KRYMasterKeys const& keys, std::string const& serviceID);
    // For a file that begins with header. Raises KRYError with KRY_ERROR_DAMAGED unless that is ours and made
    // with one of the keys.
    KRYFileCipher(std::string const& header, KRYMasterKeys const& keys, std::string const& serviceID);

    std::string const& getHeader() const { return m_header; }

    // Encrypts size bytes in their place and adds the tag after them: s_tagSize bytes more.
    void seal(std::uint64_t number, bool last, unsigned char* data, std::size_t size);
    // Decrypts size bytes, which the tag follows, in their place. Returns false if they are not what seal
    // made for this number and place; the bytes must not be used then.
    bool open(std::uint64_t number, bool last, unsigned char* data, std::size_t size);

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

    std::string const m_header;
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> m_context;
};

// Room for a segment and its tag, which is wiped before its memory is given up.
struct KRYSegment : std::array<unsigned char, KRYFileCipher::s_segmentSize + KRYFileCipher::s_tagSize>
{
    ~KRYSegment() { OPENSSL_cleanse(data(), size()); }
};

#endif
