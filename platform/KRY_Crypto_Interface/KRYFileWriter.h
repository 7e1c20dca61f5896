// Writes one encrypted file. For one thread at a time; memory for one segment serves a file of any size.
//
// The data goes to a temporary file beside the target, which takes the target's name in finish. Until then,
// and if the object is destroyed without, the target stays as it was. The new file's mode follows the umask,
// also where it takes an older one's place.

#ifndef KRY_CRYPTO_INTERFACE_KRYFILEWRITER_H
#define KRY_CRYPTO_INTERFACE_KRYFILEWRITER_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYSegmentCipher.h"
#include "KRY_Crypto_Interface/KRYSticky.h"
#include "KRY_Crypto_Interface/KRYTemporaryFile.h"

class KRYFileWriter
{
public:
    // The target may exist if it is a regular file; a symbolic link is none. Its directory must be readable.
    KRYFileWriter(std::string_view target, KRYSecret const& masterKey, std::string const& serviceID);
    ~KRYFileWriter();

    // A failure poisons the file: whatever comes next fails for the same reason.
    void append(char const* data, std::size_t size);
    // Seals the last segment, brings all to the disk and gives the file its name. The object is of no use
    // afterwards.
    void finish();

private:
    void gather(unsigned char const* data, std::size_t size);
    void flushSegment();
    void writeLast();

    KRYFile m_directory;
    KRYTemporaryFile m_file;
    KRYFileHeader m_header;
    KRYSegmentCipher m_cipher;
    KRYSticky m_sticky;

    // A full segment is held back here until more data shows that it is not the last: as plain data, or
    // sealed at once if the caller's memory held all of it. What turns out to be the last is opened again.
    std::unique_ptr<unsigned char[]> m_segment;
    std::size_t m_filled = 0;  // plain bytes
    bool m_sealed = false;
    std::uint64_t m_number = 0;
};

#endif
