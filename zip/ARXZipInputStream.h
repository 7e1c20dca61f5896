// Reads a zip archive as a stream, from a named file, a FILE*, memory or any table of I/O functions.
//
// Every operation goes to the source that the constructor chose; ARXZipInputStreamI says what each does.
// close does nothing here: the archive closes with the object. NEBAssertError tells that the bytes are no
// archive; also an archive without a single entry counts as none if it is nothing but its end record.

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
    // Opened for binary reading, by the caller, who closes it again after this object has gone. It is rewound
    // first.
    explicit ARXZipInputStream(std::FILE* file);
    // The table and what it leads to must outlive this object.
    explicit ARXZipInputStream(zlib_filefunc_def_s* fileFuncs);
    // size bytes, which are not copied and must outlive this object unchanged.
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
