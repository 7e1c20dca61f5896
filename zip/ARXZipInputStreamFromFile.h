// A zip stream over a named file, which stays open as long as the stream lives.

#ifndef ARXIUM_ZIP_ARXZIPINPUTSTREAMFROMFILE_H
#define ARXIUM_ZIP_ARXZIPINPUTSTREAMFROMFILE_H

#include <cstdio>
#include <memory>

#include "zip/ARXZipInputStreamFromFileHandle.h"
#include "zip/ARXZipInputStreamMixin.h"

class ARXZipInputStreamFromFile : public ARXZipInputStreamMixin
{
public:
    // NEBAssertError, with different texts, for a file that can't be opened and for one that is no archive.
    explicit ARXZipInputStreamFromFile(char const* path);
    ~ARXZipInputStreamFromFile() override;

    ARXZipInputStreamI* getFramework() override;

private:
    std::FILE* m_fileHandle;
    std::unique_ptr<ARXZipInputStreamFromFileHandle> m_pFramework;
};

#endif
