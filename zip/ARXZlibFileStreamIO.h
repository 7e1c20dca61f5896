// minizip's table of I/O functions over a FILE* that is already open. The functions never close it.

#ifndef ARXIUM_ZIP_ARXZLIBFILESTREAMIO_H
#define ARXIUM_ZIP_ARXZLIBFILESTREAMIO_H

#include <cstdio>

struct zlib_filefunc_def_s;

// Fills the whole table, with pFile as its opaque word; nothing is checked before the open function is
// called, which rewinds the file.
void fillZlibFileStreamIO(zlib_filefunc_def_s* table, std::FILE* pFile);

#endif
