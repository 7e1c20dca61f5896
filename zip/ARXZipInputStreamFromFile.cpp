#include "zip/ARXZipInputStreamFromFile.h"

#include <fcntl.h>

#include "frame/ARXAssert.h"
#include "frame/ARXNew.h"

ARXZipInputStreamFromFile::ARXZipInputStreamFromFile(char const* path)
    : m_fileHandle(path ? std::fopen(path, "rb") : nullptr)
{
    NEB_ASSERT_NAMED(m_fileHandle, "Unable to open file");
    ::fcntl(::fileno(m_fileHandle), F_SETFD, FD_CLOEXEC);
    // The destructor does not run for an object whose constructor fails.
    try
    {
        NEB_NEW(m_pFramework, std::make_unique<ARXZipInputStreamFromFileHandle>(m_fileHandle));
    }
    catch (...)
    {
        std::fclose(m_fileHandle);
        throw;
    }
}

ARXZipInputStreamFromFile::~ARXZipInputStreamFromFile()
{
    std::fclose(m_fileHandle);  // the inner stream does not touch it in its destructor
}

ARXZipInputStreamI* ARXZipInputStreamFromFile::getFramework()
{
    NEB_ASSERT(m_pFramework);
    return m_pFramework.get();
}
