// What an encrypted file begins with. docs/formats.md has the layout of the whole file and test vectors.
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

    // A new file's, with a fresh salt, under the first key. The keys must outlive the object.
    explicit KRYFileHeader(KRYMasterKeys const& keys);
    // One that was read. Raises KRYError with KRY_ERROR_DAMAGED unless it is ours and made with one of the
    // keys.
    KRYFileHeader(KRYMasterKeys const& keys, Bytes const& read);

    Bytes const& getBytes() const { return m_bytes; }
    void deriveFileKey(std::string const& serviceID, KRYSecret& result) const;

private:
    Bytes m_bytes;
    KRYSecret const* m_masterKey;
};

#endif
