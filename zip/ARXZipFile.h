// Creates a zip archive and fills it: with a directory tree, with single files, or piece by piece.
//
// Failure leaves as an exception: NEBAssertError for a wrong call, ARXException otherwise. Both leave the
// archive usable, apart from a create that fails. An object serves one thread at a time; separate objects
// share nothing.
//
// Limits come from minizip. An entry and the whole archive hold less than 4 GiB each; beyond that the archive
// can't be read, and nothing reports it. Of more than 65535 entries this library and many others read all,
// but strict readers complain. A disk that fills up is reported by the write that hits it, but what is still
// buffered when an entry or the archive ends is lost without a word: a host that must know reads the archive
// back.

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
    // Closes; what fails there is lost.
    virtual ~ARXZipFile();

    ARXZipFile(ARXZipFile const&) = delete;
    ARXZipFile& operator=(ARXZipFile const&) = delete;

    // Starts a new archive in place of any file at that path, finishing the archive that was open. After a
    // failure none is open.
    void create(char const* fileName);
    void create(I18NString const& fileName);

    // Adds an existing regular file, deflated, with its modification time in local time; a time that can't be
    // expressed becomes 1980-01-01, and years before 1980 come out wrong (minizip turns 1970 into 2050). Its
    // name in the archive is what lies behind baseDir (ARXFmDir::getPathTail), with "/" as separator; without
    // a baseDir (null or empty) the last element.
    //
    // A path that contains the path given to create is skipped without a word, which keeps an archive out of
    // itself. A file that can't be read to its end gives a shorter entry, one that grows is cut at the size
    // it had at first.
    void addFile(char const* fileName, char const* baseDir);
    void addFile(I18NString const& fileName, I18NString const& baseDir);

    // Adds the files of dirName and, if recursive, then those of its real subdirectories, each in the order
    // of their bytes. Directories themselves make no entry. A null baseDir means dirName, an empty one
    // flattens the tree. resolvePaths makes both paths absolute and free of links first. A directory that
    // can't be read counts as empty.
    void addDirectory(char const* dirName, char const* baseDir, bool recursive, bool resolvePaths);
    // An empty baseDir stays an empty one and flattens.
    void addDirectory(I18NString const& dirName, I18NString const& baseDir, bool recursive,
                      bool resolvePaths);

    // Starts an entry, finishing the one that is open. Names are stored as given and may repeat; 65535 bytes
    // at most. info (may be null for an entry without a date) goes to minizip as it is: its tm_mon counts
    // from 0, its tm_year from 0 or 1900. comment may be null. level is zlib's, -1 to 9.
    void openNewFileInZip(char const* fileName, zip_fileinfo* info, I18NString const* comment,
                          compressMethod_t method, int level);
    // data may be null where length, in bytes, is 0. After a failure the entry stays open.
    void writeInFileInZip(unsigned char* data, unsigned int length);
    void closeFileInZip();

    // Finishes the open entry and the archive; without an archive nothing happens.
    void close();

private:
    int refusalOf(int zipMethod, int level) const;
    bool hasRoomFor(unsigned int length) const;
    bool isArchiveFull(unsigned int length) const;

    zipFile m_zipFile;  // null when closed
    bool m_fileOpen;
    std::string m_zipFileName;  // as given to the last create that worked, also after close
    int m_archive;              // descriptor of the archive's file, which tells its size; -1 when closed
    std::uint64_t m_entrySize;  // bytes written to the open entry
};

#endif
