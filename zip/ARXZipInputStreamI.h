// A zip archive read as an input stream: move to an entry, open it, and read its contents.
//
// Example:
//     #include "zip/ARXZipInputStream.h"
//     ARXZipInputStream zip("/tmp/backup.zip");
//     std::string name;
//     for (bool isEntry = zip.getFirstEntry(); isEntry; isEntry = zip.getNextEntry())
//         if (zip.getCurrentEntryName(name) && zip.openCurrentEntry())
//             zip.read();  // the first byte
//
// Names are bytes as stored, whatever UTF-8 flag the entry has. An entry never gives more bytes than it
// declares. An object serves one thread at a time.

#ifndef ARXIUM_ZIP_ARXZIPINPUTSTREAMI_H
#define ARXIUM_ZIP_ARXZIPINPUTSTREAMI_H

#include <cstdint>
#include <string>

#include "OJDStreamsDLL/OJDInputStream.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXZipInputStreamI : public OJDInputStream
{
public:
    struct zipEntry
    {
        char szFileName[260];  // as stored, terminated
        std::uint32_t version;
        std::uint32_t versionNeeded;
        std::uint32_t flag;
        std::uint32_t compressionMethod;
        std::uint32_t dosDate;  // DOS date in the high, DOS time in the low 16 bits
        std::uint32_t crc;
        std::uint32_t compressedSize;    // in bytes; 0xFFFFFFFF if it has more bits
        std::uint32_t uncompressedSize;  // the same
        std::uint32_t internalAttributes;
        std::uint32_t externalAttributes;
    };

    // The virtual operations keep this order, which is that of their slots after those of the base.

    // read returns a byte (0 to 255), or the number of bytes read: less than n only at the entry's end or
    // after an error. Returns s_end if no entry is open, at its end, or if n is 0. Raises NEBAssertError
    // after close. It does not check the checksum: compare with zipEntry::crc.
    std::size_t read() override = 0;
    std::size_t read(char* buf, std::size_t n) override = 0;
    // Reserves n bytes first, even if fewer come; raises NEBOutOfMemoryError if that fails.
    std::size_t read(NEBByteBuffer& buf, std::size_t n) override = 0;

    // Returns false at the end and on failure. An open entry stays open.
    virtual bool getFirstEntry() = 0;
    virtual bool getNextEntry() = 0;
    // Moves to the first entry of that name; "/" and "\" are equal. Raises NEBAssertError for an entry on the
    // way whose name has more than 258 bytes.
    virtual bool locate(char const* name) = 0;
    // Raises NEBAssertError for a name of more than 258 bytes.
    virtual bool getCurrentEntryName(std::string& name) = 0;
    // Raises NEBAssertError for a name of more than 259 bytes.
    virtual bool getCurrentEntryInfo(zipEntry& entry) = 0;
    // Starts at the entry's first byte, even if it was open. Returns false for an encrypted entry, and for
    // one packed other than stored or deflated.
    virtual bool openCurrentEntry() = 0;
};

#endif
