// The zip stream itself, over minizip and a table of I/O functions that says where the archive's bytes are.

#ifndef ARXIUM_ZIP_ARXZIPINPUTSTREAMFRAMEWORK_H
#define ARXIUM_ZIP_ARXZIPINPUTSTREAMFRAMEWORK_H

#include <minizip/unzip.h>

#include "zip/ARXZipInputStreamI.h"
#include "zip/ARXZlibGuardedIO.h"

class ARXZipInputStreamFramework : public ARXZipInputStreamI
{
public:
    // Functions of a host may raise anything, and are guarded. Those of this library raise at most before
    // minizip has allocated memory, and a guard would cost a fifth of the time of a walk.
    enum tableOrigin
    {
        tableOfHost,
        tableOfLibrary
    };

    // Copies the table; what its functions use must outlive the stream. Raises NEBAssertError if that is no
    // archive, and what the functions raise.
    explicit ARXZipInputStreamFramework(zlib_filefunc_def_s* fileFuncs, tableOrigin origin = tableOfHost);
    ~ARXZipInputStreamFramework() override;

    ARXZipInputStreamFramework(ARXZipInputStreamFramework const&) = delete;
    ARXZipInputStreamFramework& operator=(ARXZipInputStreamFramework const&) = delete;

    std::size_t read() override;
    std::size_t read(char* buf, std::size_t n) override;
    std::size_t read(NEBByteBuffer& target, std::size_t n) override;
    void close() override;

    bool getFirstEntry() override;
    bool getNextEntry() override;
    bool locate(char const* name) override;
    bool getCurrentEntryName(std::string& name) override;
    bool getCurrentEntryInfo(zipEntry& entry) override;
    bool openCurrentEntry() override;

private:
    static std::size_t constexpr s_nameBufferSize = 259;

    int readCurrentFileInfo(unz_file_info& info, char* szFileName, uLong fileNameBufferSize);
    bool readCurrentName(char (&name)[s_nameBufferSize]);
    // A result of minizip, unless a function of the table raised an exception meanwhile: then that.
    int checked(int result);

    unzFile m_zipFile;  // null only after close
    bool m_entryOpen;
    zlib_filefunc_def_s* m_pFileFuncs;
    ZlibGuard m_guard;
};

#endif
