// Reads one encrypted file, from any place in it. For one thread at a time; memory for one segment serves a
// file of any size.
//
// Only authenticated data is returned, and the end only after the last segment. A failure stays: every later
// call fails for the same reason.

#ifndef KRY_CRYPTO_INTERFACE_KRYFILEREADER_H
#define KRY_CRYPTO_INTERFACE_KRYFILEREADER_H

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYFileCipher.h"
#include "os/OsFile.h"

class KRYFileReader
{
public:
    // Begins at the byte offset of the plain data. Raises KRYError unless it is a regular file with a header
    // of ours that one of the keys belongs to, and the plain data reaches to offset.
    KRYFileReader(std::string_view path, std::uint64_t offset, KRYMasterKeys const& keys,
                  std::string const& serviceID);

    // The data from the position to the end of its segment: empty only at the end of the file. Valid until
    // the next call of peek or getSize.
    std::string_view peek();
    void advance(std::size_t count) { m_position += count; }

    // The size of the plain data, which the last segment proves.
    std::uint64_t getSize();

private:
    std::uint64_t openFile();
    std::string readHeader() const;
    void read(std::uint64_t offset, void* target, std::size_t size) const;
    void load(std::uint64_t number);

    std::string const m_name;
    OsFile m_file;
    std::uint64_t const m_bodySize;  // of all segments with their tags
    std::uint64_t const m_lastNumber;
    KRYFileCipher m_cipher;
    std::exception_ptr m_failure;

    std::uint64_t m_position;  // in the plain data
    KRYSegment m_segment;
    std::uint64_t m_number;    // of the segment in memory
    std::size_t m_loaded = 0;  // its plain bytes
};

#endif
