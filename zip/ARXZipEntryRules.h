// What extractor and stream share about entries.

#ifndef ARXIUM_ZIP_ARXZIPENTRYRULES_H
#define ARXIUM_ZIP_ARXZIPENTRYRULES_H

#include <algorithm>
#include <cstdint>

#include <minizip/unzip.h>

// 0xFFFFFFFF stands for a number that needs more than 32 bits, as in the format itself (APPNOTE.TXT, 4.4.8).
inline std::uint32_t entryNumber(uLong number)
{
    return static_cast<std::uint32_t>(std::min<uLong>(number, UINT32_MAX));
}

// Copies the ten numbers of an entry; the rest of the record stays as it is.
template <class Record>
void copyEntryNumbers(unz_file_info const& from, Record& to)
{
    to.version = entryNumber(from.version);
    to.versionNeeded = entryNumber(from.version_needed);
    to.flag = entryNumber(from.flag);
    to.compressionMethod = entryNumber(from.compression_method);
    to.dosDate = entryNumber(from.dosDate);
    to.crc = entryNumber(from.crc);
    to.compressedSize = entryNumber(from.compressed_size);
    to.uncompressedSize = entryNumber(from.uncompressed_size);
    to.internalAttributes = entryNumber(from.internal_fa);
    to.externalAttributes = entryNumber(from.external_fa);
}

// Opens the current entry, whose flag and method are passed, for reading. Returns false for what minizip
// can't open, and for encrypted entries and foreign methods, which it opens but reads as raw bytes.
bool openReadableEntry(unzFile zipFile, std::uint32_t flag, std::uint32_t method);

#endif
