#include "zip/ARXZlibFileStreamIO.h"

#include <minizip/ioapi.h>

#include "frame/ARXAssert.h"

namespace
{
std::FILE* fileOf(voidpf stream)
{
    return static_cast<std::FILE*>(stream);
}

voidpf openFile(voidpf opaque, char const*, int)
{
    std::FILE* const pFile = fileOf(opaque);
    NEB_ASSERT(pFile);
    std::rewind(pFile);
    return opaque;
}

uLong readFile(voidpf, voidpf stream, void* buf, uLong size)
{
    // minizip reads headers byte by byte; an fread for each byte would take most of the time of a walk.
    if (size == 1)
    {
        int const byte = ::getc_unlocked(fileOf(stream));
        if (byte == EOF)
            return 0;
        *static_cast<unsigned char*>(buf) = static_cast<unsigned char>(byte);
        return 1;
    }
    return std::fread(buf, 1, size, fileOf(stream));
}

uLong writeFile(voidpf, voidpf stream, void const* buf, uLong size)
{
    return std::fwrite(buf, 1, size, fileOf(stream));
}

long tellFile(voidpf, voidpf stream)
{
    return std::ftell(fileOf(stream));
}

long seekFile(voidpf, voidpf stream, uLong offset, int origin)
{
    int constexpr origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};  // in the order of minizip's numbers 0 to 2
    if (origin < ZLIB_FILEFUNC_SEEK_SET || origin > ZLIB_FILEFUNC_SEEK_END)
        return -1;
    return std::fseek(fileOf(stream), static_cast<long>(offset), origins[origin]) == 0 ? 0 : -1;
}

// Whoever opened the file closes it.
int closeFile(voidpf, voidpf)
{
    return 0;
}

int hasError(voidpf, voidpf stream)
{
    return std::ferror(fileOf(stream));
}
}  // namespace

void fillZlibFileStreamIO(zlib_filefunc_def_s* table, std::FILE* pFile)
{
    *table = {openFile, readFile, writeFile, tellFile, seekFile, closeFile, hasError, pFile};
}
