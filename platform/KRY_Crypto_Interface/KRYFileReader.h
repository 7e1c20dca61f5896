// Reads one encrypted file. For one thread at a time; memory for one segment serves a file of any size.
//
// Nothing is given out before its segment is authenticated, and the end is told only where the last segment
// was, with nothing behind it. A failure stays: every later read fails for the same reason.

#ifndef KRY_CRYPTO_INTERFACE_KRYFILEREADER_H
#define KRY_CRYPTO_INTERFACE_KRYFILEREADER_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYFile.h"
#include "KRY_Crypto_Interface/KRYSegmentCipher.h"
#include "KRY_Crypto_Interface/KRYSticky.h"

class KRYFileReader
{
public:
    // Raises KRYError unless it is a regular file with a header of ours that the master key belongs to.
    KRYFileReader(std::string_view path, KRYSecret const& masterKey, std::string const& serviceID);
    ~KRYFileReader();

    // The data from here on, as far as its segment goes: empty only at the end of the file. Stays valid and
    // is given again until advance.
    std::string_view peek();
    void advance(std::size_t count) { m_position += count; }

private:
    KRYFileHeader readHeader(KRYSecret const& masterKey);
    void readSegment();

    KRYFile m_file;
    KRYSegmentCipher m_cipher;
    KRYSticky m_sticky;

    // A segment, its tag, and the first byte of the next one: without that this is the last.
    std::unique_ptr<unsigned char[]> m_segment;
    std::size_t m_position = 0;
    std::size_t m_end = 0;
    std::uint64_t m_number = 0;  // of the next segment
    bool m_atLast = false;
};

#endif
