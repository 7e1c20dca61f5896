#include "zip/ARXZipInputStreamMixin.h"

ARXZipInputStreamMixin::ARXZipInputStreamMixin() = default;

ARXZipInputStreamMixin::~ARXZipInputStreamMixin() = default;

std::size_t ARXZipInputStreamMixin::read()
{
    return getFramework()->read();
}

std::size_t ARXZipInputStreamMixin::read(char* buf, std::size_t n)
{
    return getFramework()->read(buf, n);
}

std::size_t ARXZipInputStreamMixin::read(NEBByteBuffer& buf, std::size_t n)
{
    return getFramework()->read(buf, n);
}

bool ARXZipInputStreamMixin::getFirstEntry()
{
    return getFramework()->getFirstEntry();
}

bool ARXZipInputStreamMixin::getNextEntry()
{
    return getFramework()->getNextEntry();
}

bool ARXZipInputStreamMixin::locate(char const* name)
{
    return getFramework()->locate(name);
}

bool ARXZipInputStreamMixin::getCurrentEntryName(std::string& name)
{
    return getFramework()->getCurrentEntryName(name);
}

bool ARXZipInputStreamMixin::getCurrentEntryInfo(zipEntry& entry)
{
    return getFramework()->getCurrentEntryInfo(entry);
}

bool ARXZipInputStreamMixin::openCurrentEntry()
{
    return getFramework()->openCurrentEntry();
}
