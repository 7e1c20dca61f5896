// Reads a zip archive (APPNOTE.TXT; RFC 1951) as a stream, from a named file, a FILE*, memory or a table of
// I/O functions.
//
// Example:
//     ARXZipInputStream zip("/tmp/backup.zip");
//     char bytes[4096];
//     if (zip.locate("a/b") && zip.openCurrentEntry())
//         while (zip.read(bytes, sizeof bytes) != OJDInputStream::s_end)
//             continue;  // use the bytes
//
// ARXZipInputStreamI describes the operations; each goes to the source that the constructor chose. close does
// nothing here: the archive is closed by the destructor. Paths are bytes without conversion. A constructor
// raises NEBAssertError if the bytes are no archive; an archive of no entries is none. Memory is stricter
// than a file: seeking to its end fails, which some archives with odd extra fields ask for. An object serves
// one thread at a time.

#ifndef ARXIUM_ZIP_ARXZIPINPUTSTREAM_H
#define ARXIUM_ZIP_ARXZIPINPUTSTREAM_H

#include <cstdio>
#include <memory>

#include "zip/ARXZipInputStreamI.h"

struct zlib_filefunc_def_s;

class ARXIUM_API ARXZipInputStream : public ARXZipInputStreamI
{
public:
    // The fields are those of the interface.
    struct zipEntry : ARXZipInputStreamI::zipEntry
    {
    };

    explicit ARXZipInputStream(char const* path);
    // The caller opens file for binary reading, and closes it after the destruction of this object. The
    // constructor rewinds it. Where long has 32 bits, a file of 2 GiB or more counts as no archive.
    explicit ARXZipInputStream(std::FILE* file);
    // The caller keeps the table and what its functions use alive as long as this object. An exception of a
    // function leaves the operation that called it.
    explicit ARXZipInputStream(zlib_filefunc_def_s* fileFuncs);
    // size is in bytes. The caller keeps the bytes, which are not copied, unchanged as long as this object.
    ARXZipInputStream(char const* pBuffer, std::size_t size);
    ~ARXZipInputStream() override;

    ARXZipInputStream(ARXZipInputStream const&) = delete;
    ARXZipInputStream& operator=(ARXZipInputStream const&) = delete;

    std::size_t read() override;
    std::size_t read(char* buf, std::size_t n) override;
    std::size_t read(NEBByteBuffer& buf, std::size_t n) override;

    bool getFirstEntry() override;
    bool getNextEntry() override;
    bool locate(char const* name) override;
    bool getCurrentEntryName(std::string& name) override;
    bool getCurrentEntryInfo(ARXZipInputStreamI::zipEntry& entry) override;
    bool getCurrentEntryInfo(zipEntry& entry);
    bool openCurrentEntry() override;

private:
    std::unique_ptr<ARXZipInputStreamI> m_pStream;  // never null
};

#endif
