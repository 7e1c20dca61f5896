// What an encrypted file begins with, and the layout of the file.
//
//     offset size
//        0     6  "KRYENC"
//        6     1  version, 1
//        7     1  algorithm, 1: AES-256-GCM under a key by HKDF with SHA-256
//        8     4  bytes of plain data in a full segment, big endian, 65536
//       12     8  key id: tells apart master keys and says nothing about them
//       20    32  salt, random for each file
//       52        segments
//
// A segment is its encrypted data and a tag of 16 bytes. All are full but the last, which may be full too and
// is there even if it is empty. The key of the file is HKDF of the master key with the salt and, as info, the
// header followed by the service id. The nonce of 12 bytes is three of 0, the segment's number from 0 in
// eight, big endian, and 1 for the last segment, else 0. The header is authenticated along with each segment.

#ifndef KRY_CRYPTO_INTERFACE_KRYFILEHEADER_H
#define KRY_CRYPTO_INTERFACE_KRYFILEHEADER_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYFileHeader
{
public:
    static constexpr std::size_t s_size = 52;
    static constexpr std::size_t s_segmentSize = 65536;
    static constexpr std::size_t s_tagSize = 16;
    using Bytes = std::array<unsigned char, s_size>;

    // A new file's, with a fresh salt.
    explicit KRYFileHeader(KRYSecret const& masterKey);
    // One that was read. Raises KRYError with KRY_ERROR_DAMAGED unless it is ours and made with that key.
    KRYFileHeader(KRYSecret const& masterKey, Bytes const& read);

    Bytes const& getBytes() const { return m_bytes; }
    void deriveFileKey(KRYSecret const& masterKey, std::string const& serviceID, KRYSecret& result) const;

private:
    std::string_view getText() const;

    Bytes m_bytes;
};

#endif
