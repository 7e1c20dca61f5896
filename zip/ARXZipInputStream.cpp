#include "zip/ARXZipInputStream.h"

#include "frame/ARXNew.h"
#include "zip/ARXZipInputStreamFramework.h"
#include "zip/ARXZipInputStreamFromCharBuffer.h"
#include "zip/ARXZipInputStreamFromFile.h"
#include "zip/ARXZipInputStreamFromFileHandle.h"

// NEB_NEW adds an entry to the back trace of a failure, at this level as at those below.
ARXZipInputStream::ARXZipInputStream(char const* path)
{
    NEB_NEW(m_pStream, std::make_unique<ARXZipInputStreamFromFile>(path));
}

ARXZipInputStream::ARXZipInputStream(std::FILE* file)
{
    NEB_NEW(m_pStream, std::make_unique<ARXZipInputStreamFromFileHandle>(file));
}

ARXZipInputStream::ARXZipInputStream(zlib_filefunc_def_s* fileFuncs)
{
    NEB_NEW(m_pStream, std::make_unique<ARXZipInputStreamFramework>(fileFuncs));
}

ARXZipInputStream::ARXZipInputStream(char const* pBuffer, std::size_t size)
{
    NEB_NEW(m_pStream, std::make_unique<ARXZipInputStreamFromCharBuffer>(pBuffer, size));
}

ARXZipInputStream::~ARXZipInputStream() = default;

std::size_t ARXZipInputStream::read()
{
    return m_pStream->read();
}

std::size_t ARXZipInputStream::read(char* buf, std::size_t n)
{
    return m_pStream->read(buf, n);
}

std::size_t ARXZipInputStream::read(NEBByteBuffer& buf, std::size_t n)
{
    return m_pStream->read(buf, n);
}

bool ARXZipInputStream::getFirstEntry()
{
    return m_pStream->getFirstEntry();
}

bool ARXZipInputStream::getNextEntry()
{
    return m_pStream->getNextEntry();
}

bool ARXZipInputStream::locate(char const* name)
{
    return m_pStream->locate(name);
}

bool ARXZipInputStream::getCurrentEntryName(std::string& name)
{
    return m_pStream->getCurrentEntryName(name);
}

bool ARXZipInputStream::getCurrentEntryInfo(ARXZipInputStreamI::zipEntry& entry)
{
    return m_pStream->getCurrentEntryInfo(entry);
}

bool ARXZipInputStream::getCurrentEntryInfo(zipEntry& entry)
{
    return m_pStream->getCurrentEntryInfo(entry);
}

bool ARXZipInputStream::openCurrentEntry()
{
    return m_pStream->openCurrentEntry();
}
