// A zip archive read as an input stream: walk the entries or find one, open it, and read its contents.
//
// The order of calls: getFirstEntry, getNextEntry or locate; getCurrentEntryName or getCurrentEntryInfo if
// wanted; openCurrentEntry; read until it answers all ones. An object serves one thread at a time.

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
        char szFileName[260];  // as stored
        std::uint32_t version;
        std::uint32_t versionNeeded;
        std::uint32_t flag;
        std::uint32_t compressionMethod;
        std::uint32_t dosDate;  // DOS date in the high, DOS time in the low 16 bits
        std::uint32_t crc;
        std::uint32_t compressedSize;    // in bytes; 0xFFFFFFFF if it doesn't fit
        std::uint32_t uncompressedSize;  // the same
        std::uint32_t internalAttributes;
        std::uint32_t externalAttributes;
    };

    // The virtual operations keep this order: it is the order of their slots, behind those of the base.

    // The three forms of read answer all ones (s_end) with no entry open, at its end, for an n of 0, and if
    // nothing could be read; a short count means the end or an error alike. After close they raise
    // NEBAssertError. The checksum of what is read is not checked: zipEntry::crc holds it.
    std::size_t read() override = 0;
    std::size_t read(char* buf, std::size_t n) override = 0;
    // Makes room for n bytes first, also where fewer come, and raises NEBOutOfMemoryError if that fails.
    std::size_t read(NEBByteBuffer& buf, std::size_t n) override = 0;

    // False at the end as well as on failure. An open entry stays open while the cursor moves.
    virtual bool getFirstEntry() = 0;
    virtual bool getNextEntry() = 0;
    // Walks from the first entry to one of that name, "/" and "\" being equal. A name of 259 bytes or more on
    // the way raises NEBAssertError.
    virtual bool locate(char const* name) = 0;
    // At most 258 bytes; a longer name raises NEBAssertError.
    virtual bool getCurrentEntryName(std::string& name) = 0;
    // At most 259 bytes for the name; a longer one raises NEBAssertError.
    virtual bool getCurrentEntryInfo(zipEntry& entry) = 0;
    // Starts at the entry's first byte, also if it was open. False for an encrypted entry and for a method
    // other than stored and deflated.
    virtual bool openCurrentEntry() = 0;
};

#endif
