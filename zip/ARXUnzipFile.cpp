#include "zip/ARXUnzipFile.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <utility>

#include "NEBCore/NEBFmDir.h"
#include "NEBCore/NEBFmFile.h"
#include "frame/ARXAssert.h"
#include "os/OsFileTime.h"
#include "path/ARXFmDir.h"
#include "zip/ARXZipEntryRules.h"

namespace
{
std::size_t constexpr s_copyBufferSize = 2048;
std::uint32_t constexpr s_dosFolder = 0x10;
char constexpr s_separators[] = "/\\";

// Whether following the elements of name ever leads above the place where they start.
bool leadsOutside(std::string const& name)
{
    int depth = 0;
    for (std::size_t start = 0; start < name.size() && depth >= 0;)
    {
        std::size_t const end = std::min(name.find_first_of(s_separators, start), name.size());
        std::string const element = name.substr(start, end - start);
        if (element == "..")
            --depth;
        else if (!element.empty() && element != ".")
            ++depth;
        start = end + 1;
    }
    return depth < 0;
}

// By its name, or, if it was made on DOS, by its attribute (APPNOTE.TXT, 4.4.2 and 4.4.15).
bool marksFolder(ARXUnzipFile::UZ_FileInfo const& info)
{
    std::size_t const length = std::strlen(info.szFileName);
    if (length != 0 && ARXFmDir::isPathSeparator(info.szFileName[length - 1]))
        return true;
    bool const isFromDos = info.version >> 8 == 0;
    return isFromDos && (info.externalAttributes & s_dosFolder) != 0 && info.uncompressedSize == 0;
}

// Copies the open entry to file; true at its clean end.
bool copyEntry(unzFile zipFile, NEBFmFile& file)
{
    char buffer[s_copyBufferSize];
    int count;
    while ((count = unzReadCurrentFile(zipFile, buffer, sizeof buffer)) > 0)
    {
        if (file.write(buffer, static_cast<std::size_t>(count)) != count)
            return false;
    }
    return count == 0;
}
}  // namespace

ARXUnzipFile::ARXUnzipFile(char const* zipPath) : m_uzFile(nullptr)
{
    openZip(zipPath);
}

ARXUnzipFile::~ARXUnzipFile()
{
    try
    {
        closeZip();
    }
    catch (...)
    {
    }
}

bool ARXUnzipFile::openZip(char const* zipPath)
{
    closeZip();
    if (!zipPath || !*zipPath)
        return false;

    std::string resolved = zipPath;
    NEBFmDir::resolveEffectivePath(resolved);
    // Made before the archive is open: what raises after unzOpen would lose the handle.
    std::string folder;
    NEBFmDir::splitPath(resolved, &folder, nullptr);
    m_uzFile = unzOpen(resolved.c_str());
    if (!m_uzFile)
        return false;
    m_zipFolder = std::move(folder);
    m_zipPath = std::move(resolved);
    return true;
}

bool ARXUnzipFile::closeZip()
{
    m_zipFolder.clear();
    if (!m_uzFile)
        return true;
    unzCloseCurrentFile(m_uzFile);  // whether the entry was right does not matter here
    return unzClose(std::exchange(m_uzFile, nullptr)) == UNZ_OK;
}

int ARXUnzipFile::getFileCount()
{
    unz_global_info info{};
    if (!m_uzFile || unzGetGlobalInfo(m_uzFile, &info) != UNZ_OK)
        return 0;
    return static_cast<int>(std::min<uLong>(info.number_entry, INT_MAX));
}

bool ARXUnzipFile::gotoFirstFile()
{
    return m_uzFile && unzGoToFirstFile(m_uzFile) == UNZ_OK;
}

bool ARXUnzipFile::gotoNextFile()
{
    return m_uzFile && unzGoToNextFile(m_uzFile) == UNZ_OK;
}

bool ARXUnzipFile::getFileInfo(UZ_FileInfo& info)
{
    if (!m_uzFile)
        return false;
    info = UZ_FileInfo{};
    unz_file_info local{};  // minizip crashes without one
    int const result = unzGetCurrentFileInfo(m_uzFile, &local, info.szFileName, sizeof info.szFileName,
                                             nullptr, 0, info.szComment, sizeof info.szComment);
    // minizip terminates only what is shorter than the field.
    info.szComment[sizeof info.szComment - 1] = '\0';
    if (result != UNZ_OK || local.size_filename >= sizeof info.szFileName)
    {
        info = UZ_FileInfo{};
        return false;
    }
    copyEntryNumbers(local, info);
    info.isFolder = marksFolder(info);
    return true;
}

bool ARXUnzipFile::unzip(bool ignorePath, char const* szFolder)
{
    if (!m_uzFile)
        return false;
    if (!szFolder)
        szFolder = m_zipFolder.c_str();
    else if (!*szFolder || NEBFmDir::createRecursiveDir(szFolder) == 0)
        return false;
    if (getFileCount() == 0 || !gotoFirstFile())
        return false;

    // gotoNextFile returns false at the end and on an error; both count as the end.
    do
    {
        if (!unzipFile(szFolder, ignorePath))
            return false;
    } while (gotoNextFile());
    return true;
}

bool ARXUnzipFile::unzip(char const* zipPath, char const* szFolder, bool ignorePath)
{
    ARXUnzipFile archive(nullptr);
    return archive.openZip(zipPath) && archive.unzip(ignorePath, szFolder);
}

bool ARXUnzipFile::unzipFile(char const* szFolder, bool ignorePath)
{
    NEB_ASSERT(m_uzFile);
    NEB_ASSERT(szFolder);
    UZ_FileInfo info;
    if (!getFileInfo(info))
        return false;

    std::string const path = info.szFileName;
    std::string name = path;
    // A folder keeps its path: its last element alone would mean nothing.
    if (ignorePath && !info.isFolder)
        NEBFmDir::splitPath(path, nullptr, &name);
    if (leadsOutside(name))
        return false;

    std::string const target = std::string(szFolder).append("/").append(name);
    if (info.isFolder)
        return NEBFmDir::createRecursiveDir(target) != 0;
    std::string directory;
    NEBFmDir::splitPath(target, &directory, nullptr);
    return NEBFmDir::createRecursiveDir(directory) != 0 && extractTo(target, info);
}

// If the entry can't be read to its end, the file stays, without the entry's date.
bool ARXUnzipFile::extractTo(std::string const& target, UZ_FileInfo const& info)
{
    NEBFmFile file;
    if (isOpenArchive(target) || file.open(target, NEBFmFile::s_createOrTruncate, 0) == 0)
        return false;
    if (!openReadableEntry(m_uzFile, info.flag, info.compressionMethod))
        return false;

    bool const isComplete = copyEntry(m_uzFile, file);
    file.close();
    unzCloseCurrentFile(m_uzFile);  // reports a wrong checksum, which does not change the result
    if (isComplete)
        setFileModTime(target.c_str(), info.dosDate);  // without its date the file is still extracted
    return isComplete;
}

bool ARXUnzipFile::isOpenArchive(std::string target) const
{
    ARXFmDir::normalizePathSeparator(target);  // as it is done where files are made
    std::error_code error;                     // of a target that does not exist yet
    return std::filesystem::equivalent(m_zipPath, target, error);
}

// Takes dosDate as local time. The last access is written back unchanged.
bool ARXUnzipFile::setFileModTime(char const* path, unsigned int dosDate)
{
    HANDLE const file =
        CreateFileA(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;

    WORD const date = static_cast<WORD>(dosDate >> 16);
    WORD const time = static_cast<WORD>(dosDate & 0xFFFF);
    FILETIME creation;
    FILETIME lastAccess;
    FILETIME lastWrite;
    FILETIME local;
    FILETIME utc;
    bool const isSet = GetFileTime(file, &creation, &lastAccess, &lastWrite) == 1 &&
                       DosDateTimeToFileTime(date, time, &local) == 1 &&
                       LocalFileTimeToFileTime(&local, &utc) == 1 &&
                       SetFileTime(file, &utc, &lastAccess, &utc) == 1;
    CloseHandle(file);
    return isSet;
}
