#include "zip/ARXZipInputStreamFromCharBuffer.h"

#include "frame/ARXAssert.h"
#include "frame/ARXNew.h"

ARXZipInputStreamFromCharBuffer::ARXZipInputStreamFromCharBuffer(char const* pBuffer, std::size_t size)
{
    NEB_ASSERT_NAMED(pBuffer, "Input stream may not be null");
    NEB_ASSERT_NAMED(size > 0, "Input stream may not be empty.");
    m_zipCharBuffer = {pBuffer, size, 0};
    fillZlibConstCharIO(&m_fileFuncs, &m_zipCharBuffer);
    NEB_NEW(m_pFramework, std::make_unique<ARXZipInputStreamFramework>(
                              &m_fileFuncs, ARXZipInputStreamFramework::tableOfLibrary));
}

ARXZipInputStreamFromCharBuffer::~ARXZipInputStreamFromCharBuffer() = default;

ARXZipInputStreamI* ARXZipInputStreamFromCharBuffer::getFramework()
{
    NEB_ASSERT(m_pFramework);
    return m_pFramework.get();
}
