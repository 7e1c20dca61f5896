// Writes one encrypted file. For one thread at a time; memory for one segment serves a file of any size.
//
// The data goes to a temporary file beside the target, which takes the target's name in finish. Until then,
// and if the object is destroyed without, the target stays as it was. A file that replaces another takes over
// its mode.
//
// Only the process that made the object writes: a forked child that went on with the file would use the
// nonces of its parent for different data, which gives both away. OsPlacedFile refuses each segment of a
// child.

#ifndef KRY_CRYPTO_INTERFACE_KRYFILEWRITER_H
#define KRY_CRYPTO_INTERFACE_KRYFILEWRITER_H

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYFileCipher.h"
#include "os/OsPlacedFile.h"

class KRYFileWriter
{
public:
    // The target may exist if it is a regular file; a symbolic link is none. Its directory must be readable.
    KRYFileWriter(std::string_view target, KRYMasterKeys const& keys, std::string const& serviceID);

    // A failure is final: whatever comes next fails for the same reason.
    void append(char const* data, std::size_t size);
    // Seals the last segment, brings all to the disk and gives the file its name. The object is of no use
    // afterwards.
    void finish();

private:
    void gather(unsigned char const* data, std::size_t size);
    void writeSegment(bool last);
    void require(bool succeeded) const;

    OsPlacedFile m_file;
    KRYFileCipher m_cipher;
    std::exception_ptr m_failure;

    // A full segment waits here until more data shows that it is not the last.
    KRYSegment m_segment;
    std::size_t m_filled = 0;
    std::uint64_t m_number = 0;
};

#endif
