// Creates a zip archive (APPNOTE.TXT; RFC 1951) and fills it with folders, with files, or piece by piece.
//
// Example:
//     ARXZipFile zip;
//     zip.create("/tmp/backup.zip");
//     zip.addDirectory("/data", nullptr, true, false);  // "/data/a/b" becomes "a/b"
//     zip.close();
//
// Paths, names and comments are bytes, stored as given and without a UTF-8 flag; the I18NString forms convert
// to UTF-8. Permissions and links are not stored. A wrong call raises NEBAssertError, other failures
// ARXException; the archive stays usable, except after a create that fails. An object serves one thread at a
// time; separate objects share nothing.
//
// An entry holds at most 4294967294 bytes and an archive about 4 GiB (1 MiB less, to be sure): a piece that
// has no room is refused. Of more than 65535 entries most readers find all, strict ones complain. A full disk
// is reported by the write that meets it, but what is buffered when an entry or the archive ends can be lost
// unreported: a host that must know reads the archive back.

#ifndef ARXIUM_ZIP_ARXZIPFILE_H
#define ARXIUM_ZIP_ARXZIPFILE_H

#include <cstdint>
#include <string>

#include <minizip/zip.h>

#include "frame/ArxiumExport.h"

class I18NString;

class ARXIUM_API ARXZipFile
{
public:
    // Any value other than compressDeflated stores.
    enum compressMethod_t : std::int32_t
    {
        compressStored = 0,
        compressDeflated = 1
    };

    ARXZipFile();
    // Closes. What fails is not reported.
    virtual ~ARXZipFile();

    ARXZipFile(ARXZipFile const&) = delete;
    ARXZipFile& operator=(ARXZipFile const&) = delete;

    // Finishes the open archive, then starts a new one, which replaces a file at that path. After a failure
    // no archive is open.
    void create(char const* fileName);
    void create(I18NString const& fileName);

    // Adds an existing regular file, deflated. Its name in the archive is the part of fileName after baseDir
    // (ARXFmDir::getPathTail), with "/" as separator; without a baseDir (null or empty) its last element.
    //
    // Its date is its modification time as local time, with an even number of seconds. Only 1980 to 2107 can
    // be expressed: 1970 becomes 2050, and 2108 and later 0xFFFFFFFF, which is no date, or where a long has
    // 32 bits 128 years less.
    //
    // A path that contains the path given to create is skipped silently, which keeps an archive out of
    // itself. A file that can't be read to its end gives a shorter entry; one that grows is cut at the size
    // it had when it was opened.
    void addFile(char const* fileName, char const* baseDir);
    void addFile(I18NString const& fileName, I18NString const& baseDir);

    // Adds the files of dirName and then, if recursive, those of its subdirectories, each in byte order.
    // Links to directories are not followed, and directories make no entry. A null baseDir means dirName; an
    // empty one flattens the tree. resolvePaths first makes both paths absolute and free of links. A
    // directory that can't be read counts as empty.
    void addDirectory(char const* dirName, char const* baseDir, bool recursive, bool resolvePaths);
    // An empty baseDir flattens the tree here too.
    void addDirectory(I18NString const& dirName, I18NString const& baseDir, bool recursive,
                      bool resolvePaths);

    // Finishes the open entry, then starts a new one. fileName has 1 to 65535 bytes; names may repeat. info
    // goes to minizip unchanged: its tm_mon counts from 0, its tm_year from 0 or from 1900; null means no
    // date. comment may be null. level is zlib's: -1 to 9.
    void openNewFileInZip(char const* fileName, zip_fileinfo* info, I18NString const* comment,
                          compressMethod_t method, int level);
    // length is in bytes; data may be null if it is 0. The entry stays open after a failure.
    void writeInFileInZip(unsigned char* data, unsigned int length);
    void closeFileInZip();

    // Finishes the open entry and the archive. Does nothing if no archive is open.
    void close();

private:
    int refusalOf(int zipMethod, int level) const;
    bool hasRoomFor(unsigned int length) const;

    zipFile m_zipFile;  // null when closed
    bool m_fileOpen;
    std::string m_zipFileName;  // as given to the last successful create
    int m_archive;              // descriptor of the archive's file, which tells its size; -1 when closed
    std::uint64_t m_entrySize;  // bytes written to the open entry
};

#endif
