// Base of the sources of a zip stream. Each operation calls the same one of the stream in getFramework.

#ifndef ARXIUM_ZIP_ARXZIPINPUTSTREAMMIXIN_H
#define ARXIUM_ZIP_ARXZIPINPUTSTREAMMIXIN_H

#include "zip/ARXZipInputStreamI.h"

class ARXZipInputStreamMixin : public ARXZipInputStreamI
{
public:
    ARXZipInputStreamMixin();
    ~ARXZipInputStreamMixin() override;

    ARXZipInputStreamMixin(ARXZipInputStreamMixin const&) = delete;
    ARXZipInputStreamMixin& operator=(ARXZipInputStreamMixin const&) = delete;

    std::size_t read() override;
    std::size_t read(char* buf, std::size_t n) override;
    std::size_t read(NEBByteBuffer& buf, std::size_t n) override;

    bool getFirstEntry() override;
    bool getNextEntry() override;
    bool locate(char const* name) override;
    bool getCurrentEntryName(std::string& name) override;
    bool getCurrentEntryInfo(zipEntry& entry) override;
    bool openCurrentEntry() override;

    // The inner stream, owned by the source. Asked afresh for each call.
    virtual ARXZipInputStreamI* getFramework() = 0;
};

#endif
