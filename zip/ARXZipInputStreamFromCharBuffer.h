// A zip stream over an archive in memory, which is read in place. The bytes must stay valid and unchanged;
// streams may share them.

#ifndef ARXIUM_ZIP_ARXZIPINPUTSTREAMFROMCHARBUFFER_H
#define ARXIUM_ZIP_ARXZIPINPUTSTREAMFROMCHARBUFFER_H

#include <memory>

#include <minizip/ioapi.h>

#include "zip/ARXZipInputStreamFramework.h"
#include "zip/ARXZipInputStreamMixin.h"
#include "zip/ARXZlibConstCharIO.h"

class ARXZipInputStreamFromCharBuffer : public ARXZipInputStreamMixin
{
public:
    // NEBAssertError for a null pBuffer, a size (in bytes) of 0, and for what is no archive.
    ARXZipInputStreamFromCharBuffer(char const* pBuffer, std::size_t size);
    ~ARXZipInputStreamFromCharBuffer() override;

    ARXZipInputStreamI* getFramework() override;

private:
    zlib_filefunc_def_s m_fileFuncs;
    ZipCharBuffer m_zipCharBuffer;
    std::unique_ptr<ARXZipInputStreamFramework> m_pFramework;
};

#endif
