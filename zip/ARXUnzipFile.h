// Extracts a zip archive (APPNOTE.TXT; RFC 1951) into a folder.
//
// Example:
//     #include <stdexcept>
//     ARXUnzipFile archive("/tmp/backup.zip");
//     if (!archive.unzip(false, "/tmp/restored"))  // false as well if it can't be opened
//         throw std::runtime_error("not extracted");
//
// Paths and names are bytes without conversion, whatever UTF-8 flag an entry has. Permissions and links are
// not restored. A failure returns false; only the file services and lack of memory raise exceptions. What was
// extracted before a failure stays on disk, including the written part of the failed entry. An object serves
// one thread at a time; separate objects share nothing.
//
// Entries that are encrypted, or packed other than stored or deflated, fail, and so do those of 4 GiB and
// more. An entry never gives more bytes than it declares. Its checksum is the host's to check: a wrong one
// does not change the result (UZ_FileInfo::crc).

#ifndef ARXIUM_ZIP_ARXUNZIPFILE_H
#define ARXIUM_ZIP_ARXUNZIPFILE_H

#include <cstdint>
#include <string>

#include <minizip/unzip.h>

#include "frame/ArxiumExport.h"

class ARXIUM_API ARXUnzipFile
{
public:
    struct UZ_FileInfo
    {
        char szFileName[260];  // as stored, terminated
        char szComment[256];   // terminated; a longer one is cut
        std::uint32_t version;
        std::uint32_t versionNeeded;
        std::uint32_t flag;
        std::uint32_t compressionMethod;
        std::uint32_t dosDate;  // DOS date in the high, DOS time in the low 16 bits
        std::uint32_t crc;
        std::uint32_t compressedSize;    // in bytes; 0xFFFFFFFF if it has more bits
        std::uint32_t uncompressedSize;  // the same
        std::uint32_t internalAttributes;
        std::uint32_t externalAttributes;
        bool isFolder;  // the name ends in a separator, or the entry bears the folder mark of DOS
    };

    // Calls openZip. If that fails, the object is closed.
    explicit ARXUnzipFile(char const* zipPath);
    virtual ~ARXUnzipFile();

    ARXUnzipFile(ARXUnzipFile const&) = delete;
    ARXUnzipFile& operator=(ARXUnzipFile const&) = delete;

    // Closes the open archive first, even if zipPath, which may be null, can't be opened.
    bool openZip(char const* zipPath);
    // True if nothing was open, or if minizip closed it without an error.
    bool closeZip();

    // The number that the archive declares; one of more than 65535 entries may declare 65535. Returns 0 if
    // the object is closed, on failure, and for an empty archive.
    int getFileCount();
    bool gotoFirstFile();
    // Returns false at the end and on failure.
    bool gotoNextFile();

    // Extracts all entries into szFolder, which is made if it is missing, and stops at the first that fails.
    // A null szFolder means the archive's own folder. ignorePath drops the folders from the names of files;
    // entries for folders are made nevertheless. A file extracted to its end gets its stored date, read as
    // local time, if that is a date. Returns false for an archive without entries.
    //
    // Both "/" and "\" separate the elements of a name. An entry fails before anything is made for it if its
    // name leads outside szFolder or has more than 259 bytes, or if it would replace the archive itself.
    // Links that are in szFolder already are followed.
    bool unzip(bool ignorePath, char const* szFolder);
    // Opens the archive, extracts it and closes it. szFolder may be null.
    static bool unzip(char const* zipPath, char const* szFolder, bool ignorePath);

protected:
    // Describes the current entry. On a closed object info stays as it is; on any other failure it is zeroed.
    bool getFileInfo(UZ_FileInfo& info);

private:
    bool unzipFile(char const* szFolder, bool ignorePath);
    bool extractTo(std::string const& target, UZ_FileInfo const& info);
    bool isOpenArchive(std::string target) const;
    static bool setFileModTime(char const* path, unsigned int dosDate);

    unzFile m_uzFile;         // null when closed
    std::string m_zipFolder;  // folder of the archive, absolute; empty when closed
    std::string m_zipPath;    // of the archive last opened, absolute
};

#endif
