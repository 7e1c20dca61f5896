#include "zip/ARXZipFile.h"

#include <cstring>
#include <ctime>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBFmDir.h"
#include "NEBCore/NEBFmFile.h"
#include "frame/ARXAssert.h"
#include "os/OsFileName.h"
#include "path/ARXFmDir.h"

namespace
{
int constexpr s_defaultLevel = 6;
std::size_t constexpr s_copyBufferSize = 4096;
// Of sizes and places in the archive; the number above stands for one that needs more bits (APPNOTE, 4.4.8).
std::uint64_t constexpr s_largestNumber = 0xFFFFFFFE;
// More than zlib, minizip and the C library hold back of what has been written.
std::uint64_t constexpr s_heldBack = 1 << 20;

std::tm toLocalTime(std::time_t time)
{
    std::tm local{};
    ::tzset();  // localtime_r need not notice a changed TZ
    if (!::localtime_r(&time, &local))
    {
        local = std::tm{};
        local.tm_mday = 1;
        local.tm_year = 80;
    }
    return local;
}

// minizip too counts months from 0 and years from 1900.
zip_fileinfo makeFileInfo(std::tm const& local)
{
    zip_fileinfo info{};
    info.tmz_date.tm_sec = static_cast<uInt>(local.tm_sec);
    info.tmz_date.tm_min = static_cast<uInt>(local.tm_min);
    info.tmz_date.tm_hour = static_cast<uInt>(local.tm_hour);
    info.tmz_date.tm_mday = static_cast<uInt>(local.tm_mday);
    info.tmz_date.tm_mon = static_cast<uInt>(local.tm_mon);
    info.tmz_date.tm_year = static_cast<uInt>(local.tm_year);
    return info;
}

I18NString joinNames(char const* directory, std::string const& name)
{
    I18NString joined(directory, nullptr, -1, nullptr, nullptr);
    NEBFmDir::joinPath(joined, I18NString(name.c_str(), nullptr, -1, nullptr, nullptr));
    return joined;
}
}  // namespace

ARXZipFile::ARXZipFile() : m_zipFile(nullptr), m_fileOpen(false), m_archive(-1), m_entrySize(0) {}

ARXZipFile::~ARXZipFile()
{
    try
    {
        close();
    }
    catch (...)
    {
    }
}

void ARXZipFile::create(char const* fileName)
{
    NEB_ASSERT(fileName != NULL);
    std::string newName = fileName;  // lack of memory shows before anything changes
    close();

    m_zipFile = zipOpen(fileName, APPEND_STATUS_CREATE);
    m_archive = m_zipFile ? ::open(fileName, O_PATH | O_CLOEXEC) : -1;
    if (m_archive < 0)
    {
        close();
        raiseWithText(NEB_HERE, {"Unable to create zip file: ", fileName}, "ARXZipFile::initialize");
    }
    m_zipFileName = std::move(newName);
}

void ARXZipFile::create(I18NString const& fileName)
{
    create(fileName.c_str(nullptr, nullptr, nullptr, nullptr));
}

void ARXZipFile::addFile(char const* fileName, char const* baseDir)
{
    NEB_ASSERT(fileName);
    bool const exists =
        NEBFmDir::exists(fileName, NEBFmDir::s_regularFile) != 0;  // named for the assertion's text
    NEB_ASSERT(exists);
    // Before the first create the name is empty and so part of every path.
    if (std::strstr(fileName, m_zipFileName.c_str()))
        return;

    NEBFmFile source;
    source.open(fileName, NEBFmFile::s_readExisting, 0);  // read fails on a file that is not open

    std::string name;
    ARXFmDir::getPathTail(name, baseDir, fileName);
    ARXFmDir::normalizePathSeparator(name);

    struct stat status;
    if (::stat(OsFileName::forReading(fileName).c_str(), &status) != 0)
        raiseWithText(NEB_HERE, {"Unable to read status of file: ", fileName}, "ARXZipFile::addFile");
    zip_fileinfo info = makeFileInfo(toLocalTime(status.st_mtime));

    openNewFileInZip(name.c_str(), &info, nullptr, compressDeflated, s_defaultLevel);
    unsigned char buffer[s_copyBufferSize];
    for (std::int64_t count; (count = source.read(buffer, sizeof buffer)) > 0;)
        writeInFileInZip(buffer, static_cast<unsigned int>(count));
    closeFileInZip();
}

void ARXZipFile::addFile(I18NString const& fileName, I18NString const& baseDir)
{
    addFile(fileName.c_str(nullptr, nullptr, nullptr, nullptr),
            baseDir.c_str(nullptr, nullptr, nullptr, nullptr));
}

void ARXZipFile::addDirectory(char const* dirName, char const* baseDir, bool recursive, bool resolvePaths)
{
    NEB_ASSERT(dirName);
    // First, so that both are resolved alike.
    if (!baseDir)
        return addDirectory(dirName, dirName, recursive, resolvePaths);
    if (resolvePaths)
    {
        std::string directory = dirName;
        std::string base = baseDir;
        NEBFmDir::resolveEffectivePath(directory);
        NEBFmDir::resolveEffectivePath(base);
        return addDirectory(directory.c_str(), base.c_str(), recursive, false);
    }

    std::vector<std::string> files;
    std::vector<std::string> dirs;
    NEBFmDir::readDir(dirName, &files, nullptr, &dirs, nullptr);
    for (std::string const& file : files)
        addFile(joinNames(dirName, file).c_str(nullptr, nullptr, nullptr, nullptr), baseDir);
    if (!recursive)
        return;
    for (std::string const& dir : dirs)
        addDirectory(joinNames(dirName, dir).c_str(nullptr, nullptr, nullptr, nullptr), baseDir, recursive,
                     false);
}

void ARXZipFile::addDirectory(I18NString const& dirName, I18NString const& baseDir, bool recursive,
                              bool resolvePaths)
{
    addDirectory(dirName.c_str(nullptr, nullptr, nullptr, nullptr),
                 baseDir.c_str(nullptr, nullptr, nullptr, nullptr), recursive, resolvePaths);
}

void ARXZipFile::openNewFileInZip(char const* fileName, zip_fileinfo* info, I18NString const* comment,
                                  compressMethod_t method, int level)
{
    NEB_ASSERT(fileName != NULL);
    NEB_ASSERT(m_zipFile != NULL);
    if (m_fileOpen)
        closeFileInZip();  // stays closed if the next check fails
    NEB_ASSERT(0 < strlen(fileName));

    char const* const commentText = comment ? comment->c_str(nullptr, nullptr, nullptr, nullptr) : nullptr;
    int const zipMethod = method == compressDeflated ? Z_DEFLATED : 0;
    m_entrySize = 0;
    int result = refusalOf(zipMethod, level);
    if (result == ZIP_OK)
        result = zipOpenNewFileInZip(m_zipFile, fileName, info, nullptr, 0, nullptr, 0, commentText,
                                     zipMethod, level);
    if (result != ZIP_OK)
        raiseWithText(NEB_HERE, {"Unable to open new file in zip file: ", std::to_string(result).c_str()},
                      "ARXZipFile::openNewFileInZip");
    m_fileOpen = true;
}

void ARXZipFile::writeInFileInZip(unsigned char* data, unsigned int length)
{
    if (!m_fileOpen)
        raiseWithText(NEB_HERE, {"No file currently open in zip file."}, "ARXZipFile::writeInFileInZip");

    // minizip would restart the checksum of the entry for a null pointer.
    int nRet = ZIP_OK;
    if (length != 0)
        nRet = data && hasRoomFor(length) ? zipWriteInFileInZip(m_zipFile, data, length) : ZIP_PARAMERROR;
    NEB_ASSERT(nRet == ZIP_OK);
    m_entrySize += length;
}

void ARXZipFile::closeFileInZip()
{
    if (!m_fileOpen)
        raiseWithText(NEB_HERE, {"No file currently open in zip file."}, "ARXZipFile::closeFileInZip");

    zipCloseFileInZip(m_zipFile);  // ends the entry even if it reports an error
    m_fileOpen = false;
}

void ARXZipFile::close()
{
    if (m_fileOpen)
        closeFileInZip();
    if (!m_zipFile)
        return;
    zipClose(std::exchange(m_zipFile, nullptr), nullptr);  // frees the handle even if it reports an error
    if (m_archive >= 0)
        ::close(std::exchange(m_archive, -1));
}

// Refuses a level that zlib refuses, since minizip would lose memory, and an entry beyond 4 GiB, which
// minizip would write but no reader finds.
int ARXZipFile::refusalOf(int zipMethod, int level) const
{
    if (zipMethod == Z_DEFLATED && (level < Z_DEFAULT_COMPRESSION || level > Z_BEST_COMPRESSION))
        return Z_STREAM_ERROR;
    return hasRoomFor(0) ? ZIP_OK : ZIP_PARAMERROR;
}

// In the entry and in the archive. minizip does not report the size of the archive, so its file must.
bool ARXZipFile::hasRoomFor(unsigned int length) const
{
    struct stat status;
    if (::fstat(m_archive, &status) != 0)
        return false;
    std::uint64_t const growth = std::uint64_t{length} + length / 1024 + s_heldBack;  // of deflated noise
    return m_entrySize + length <= s_largestNumber &&
           static_cast<std::uint64_t>(status.st_size) + growth <= s_largestNumber;
}
