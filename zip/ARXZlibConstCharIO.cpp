#include "zip/ARXZlibConstCharIO.h"

#include <algorithm>
#include <cstring>

#include <minizip/ioapi.h>

#include "frame/ARXAssert.h"

namespace
{
voidpf openBuffer(voidpf opaque, char const*, int)
{
    auto* const pZipCharBuffer = static_cast<ZipCharBuffer*>(opaque);
    NEB_ASSERT(pZipCharBuffer);
    pZipCharBuffer->m_position = 0;
    return opaque;
}

uLong readBuffer(voidpf, voidpf stream, void* buf, uLong size)
{
    auto* const pZipCharBuffer = static_cast<ZipCharBuffer*>(stream);
    NEB_ASSERT(pZipCharBuffer);
    NEB_ASSERT(pZipCharBuffer->m_pBuffer);
    NEB_ASSERT(buf);
    std::size_t const position = pZipCharBuffer->m_position;
    std::size_t const count = std::min<std::size_t>(size, pZipCharBuffer->m_size - position);
    pZipCharBuffer->m_position = position + count;
    // minizip reads headers byte by byte; the assignment saves a call for each.
    if (count == 1)
        *static_cast<char*>(buf) = pZipCharBuffer->m_pBuffer[position];
    else if (count != 0)
        std::memcpy(buf, pZipCharBuffer->m_pBuffer + position, count);
    return count;
}

uLong writeBuffer(voidpf, voidpf, void const*, uLong)
{
    NEB_ASSERT_NAMED(false, "Cannot write to const char* buffer");
    return 0;
}

long tellBuffer(voidpf, voidpf stream)
{
    auto const* const pZipCharBuffer = static_cast<ZipCharBuffer*>(stream);
    NEB_ASSERT(pZipCharBuffer);
    return static_cast<long>(pZipCharBuffer->m_position);
}

// offset is unsigned: a step back comes as a large number, and the sum wraps round.
long seekBuffer(voidpf, voidpf stream, uLong offset, int origin)
{
    auto* const pZipCharBuffer = static_cast<ZipCharBuffer*>(stream);
    NEB_ASSERT(pZipCharBuffer);
    std::size_t target = pZipCharBuffer->m_size;  // which is refused
    if (origin == ZLIB_FILEFUNC_SEEK_SET)
        target = offset;
    else if (origin == ZLIB_FILEFUNC_SEEK_CUR)
        target = pZipCharBuffer->m_position + offset;
    else if (origin == ZLIB_FILEFUNC_SEEK_END && offset == 0 && pZipCharBuffer->m_size != 0)
        target = pZipCharBuffer->m_size - 1;
    if (target >= pZipCharBuffer->m_size)
        return -1;
    pZipCharBuffer->m_position = target;
    return 0;
}

int closeBuffer(voidpf, voidpf)
{
    return 0;
}

// Memory has no errors.
int hasError(voidpf, voidpf)
{
    return 0;
}
}  // namespace

void fillZlibConstCharIO(zlib_filefunc_def_s* table, ZipCharBuffer* pZipCharBuffer)
{
    *table = {openBuffer, readBuffer,  writeBuffer, tellBuffer,
              seekBuffer, closeBuffer, hasError,    pZipCharBuffer};
}
