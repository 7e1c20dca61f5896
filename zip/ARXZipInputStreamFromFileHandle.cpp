#include "zip/ARXZipInputStreamFromFileHandle.h"

#include "frame/ARXAssert.h"
#include "frame/ARXNew.h"
#include "zip/ARXZlibFileStreamIO.h"

ARXZipInputStreamFromFileHandle::ARXZipInputStreamFromFileHandle(std::FILE* pFile)
{
    fillZlibFileStreamIO(&m_fileFuncs, pFile);
    NEB_NEW(m_pFramework, std::make_unique<ARXZipInputStreamFramework>(
                              &m_fileFuncs, ARXZipInputStreamFramework::tableOfLibrary));
}

ARXZipInputStreamFromFileHandle::~ARXZipInputStreamFromFileHandle() = default;

ARXZipInputStreamI* ARXZipInputStreamFromFileHandle::getFramework()
{
    NEB_ASSERT(m_pFramework);
    return m_pFramework.get();
}
