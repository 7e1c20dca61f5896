// minizip's table of I/O functions over constant memory. They allocate nothing. The record holds the read
// position, so two records over the same bytes do not disturb each other.

#ifndef ARXIUM_ZIP_ARXZLIBCONSTCHARIO_H
#define ARXIUM_ZIP_ARXZLIBCONSTCHARIO_H

#include <cstddef>

struct zlib_filefunc_def_s;

struct ZipCharBuffer
{
    char const* m_pBuffer;  // not owned
    std::size_t m_size;
    std::size_t m_position;  // of the next byte to read, 0 to m_size
};

// Fills the whole table, with the record as its opaque word, and checks nothing. The record must outlive the
// use of the table. A seek reaches only the bytes of the buffer: its end is the last byte, not the place
// after it. Writing raises NEBAssertError.
void fillZlibConstCharIO(zlib_filefunc_def_s* table, ZipCharBuffer* pZipCharBuffer);

#endif
