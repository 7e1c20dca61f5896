// Unpacks a zip archive into a folder.
//
// Failure is an answer of false; the only exceptions are those of the file services and lack of memory.
// Entries extracted before a failed one stay on disk, and so does the part of the failed one that was
// written. An object serves one thread at a time: the cursor lives in its handle. Separate objects share
// nothing.
//
// Limits come from minizip. Entries that are encrypted or packed with a method other than stored and deflated
// fail, and so do sizes above 4 GiB; more than 65535 entries work. A wrong checksum does not change the
// outcome: whoever needs it checked compares the contents with UZ_FileInfo::crc.

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
        char szFileName[260];  // as stored
        char szComment[256];   // cut where it is longer
        std::uint32_t version;
        std::uint32_t versionNeeded;
        std::uint32_t flag;
        std::uint32_t compressionMethod;
        std::uint32_t dosDate;  // DOS date in the high, DOS time in the low 16 bits
        std::uint32_t crc;
        std::uint32_t compressedSize;    // in bytes; 0xFFFFFFFF if it doesn't fit
        std::uint32_t uncompressedSize;  // the same
        std::uint32_t internalAttributes;
        std::uint32_t externalAttributes;
        bool isFolder;  // the name ends in a separator, or DOS marked the entry so
    };

    // As openZip; an archive that can't be opened leaves the object closed.
    explicit ARXUnzipFile(char const* zipPath);
    virtual ~ARXUnzipFile();

    ARXUnzipFile(ARXUnzipFile const&) = delete;
    ARXUnzipFile& operator=(ARXUnzipFile const&) = delete;

    // Closes the open archive first, also when zipPath (may be null) turns out to be unusable.
    bool openZip(char const* zipPath);
    // True also with nothing open.
    bool closeZip();

    // As the archive tells it: of more than 65535 entries it may tell only 65535. 0 for a closed object, a
    // failed call and an empty archive alike.
    int getFileCount();
    bool gotoFirstFile();
    // False at the end as well as on failure.
    bool gotoNextFile();

    // Extracts every entry, from the first to the first that fails, into szFolder, which is made if need be;
    // a null one means the archive's own folder. ignorePath drops the folders in the names of files; entries
    // for folders are made all the same. Each file gets its stored date, read as local time, where that is a
    // date. False for an archive without entries.
    //
    // Both "/" and "\" separate the elements of a name. A name that leads outside szFolder, or is longer than
    // 259 bytes, fails before anything is made for it. Links that stand in szFolder already are followed.
    bool unzip(bool ignorePath, char const* szFolder);
    // The same for an archive that is open only for this call. szFolder may be null.
    static bool unzip(char const* zipPath, char const* szFolder, bool ignorePath);

protected:
    // Describes the current entry. info is left alone on a closed object; after another failure it holds
    // nothing.
    bool getFileInfo(UZ_FileInfo& info);

private:
    bool unzipFile(char const* szFolder, bool ignorePath);
    bool extractTo(std::string const& target, UZ_FileInfo const& info);
    bool isOpenArchive(std::string target) const;
    static bool setFileModTime(char const* path, unsigned int dosDate);

    unzFile m_uzFile;         // null when closed
    std::string m_zipFolder;  // folder of the archive itself, absolute; empty when closed
    std::string m_zipPath;    // of the archive last opened, absolute
};

#endif
