// minizip's table of I/O functions over a FILE* that is already open. The functions never close it.

#ifndef ARXIUM_ZIP_ARXZLIBFILESTREAMIO_H
#define ARXIUM_ZIP_ARXZLIBFILESTREAMIO_H

#include <cstdio>

struct zlib_filefunc_def_s;

// Fills the whole table, with pFile as its opaque word. The open function checks that pFile is not null and
// rewinds the file. Where long has 32 bits, the functions fail beyond 2 GiB.
void fillZlibFileStreamIO(zlib_filefunc_def_s* table, std::FILE* pFile);

#endif
