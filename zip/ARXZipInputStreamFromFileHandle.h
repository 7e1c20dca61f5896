// A zip stream over a FILE* that the caller has opened for binary reading and closes afterwards. The archive
// begins at the file's first byte. Nobody else may move the FILE* while the stream reads.

#ifndef ARXIUM_ZIP_ARXZIPINPUTSTREAMFROMFILEHANDLE_H
#define ARXIUM_ZIP_ARXZIPINPUTSTREAMFROMFILEHANDLE_H

#include <cstdio>
#include <memory>

#include <minizip/ioapi.h>

#include "zip/ARXZipInputStreamFramework.h"
#include "zip/ARXZipInputStreamMixin.h"

class ARXZipInputStreamFromFileHandle : public ARXZipInputStreamMixin
{
public:
    // NEBAssertError for a null pFile and for what is no archive.
    explicit ARXZipInputStreamFromFileHandle(std::FILE* pFile);
    ~ARXZipInputStreamFromFileHandle() override;

    ARXZipInputStreamI* getFramework() override;

private:
    zlib_filefunc_def_s m_fileFuncs;
    std::unique_ptr<ARXZipInputStreamFramework> m_pFramework;
};

#endif
