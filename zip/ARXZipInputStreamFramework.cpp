#include "zip/ARXZipInputStreamFramework.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include "NEBCore/NEBByteBuffer.h"
#include "frame/ARXAssert.h"
#include "path/ARXFmDir.h"
#include "zip/ARXZipEntryRules.h"

namespace
{
std::size_t constexpr s_largestRead = 2147483647;  // minizip returns an int
}  // namespace

ARXZipInputStreamFramework::ARXZipInputStreamFramework(zlib_filefunc_def_s* fileFuncs, tableOrigin origin)
    : m_zipFile(nullptr), m_entryOpen(false), m_pFileFuncs(fileFuncs)
{
    zlib_filefunc_def_s guarded;
    if (m_pFileFuncs && origin == tableOfHost)
    {
        m_guard.m_functions = *m_pFileFuncs;
        fillZlibGuardedIO(&guarded, &m_guard);
        fileFuncs = &guarded;
    }
    // No path: the table alone knows where the bytes are.
    std::unique_ptr<void, int (*)(unzFile)> archive(unzOpen2(nullptr, fileFuncs), unzClose);
    rethrowRaised(m_guard);  // minizip may have opened an archive whose first entry it could not read
    m_zipFile = archive.release();
    NEB_ASSERT_NAMED(m_zipFile, "Unable to open zip file.");
}

ARXZipInputStreamFramework::~ARXZipInputStreamFramework()
{
    try
    {
        ARXZipInputStreamFramework::close();
    }
    catch (...)
    {
    }
}

std::size_t ARXZipInputStreamFramework::read()
{
    char byte;
    return read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : s_end;
}

// The end of the entry and an error look alike: a short count, or s_end if nothing was read.
std::size_t ARXZipInputStreamFramework::read(char* buf, std::size_t n)
{
    NEB_ASSERT(buf);
    NEB_ASSERT(m_zipFile);
    std::size_t total = 0;
    while (m_entryOpen && total < n)
    {
        std::size_t const wanted = std::min(n - total, s_largestRead);
        int const count = checked(unzReadCurrentFile(m_zipFile, buf + total, static_cast<unsigned>(wanted)));
        if (count <= 0)
            break;
        total += static_cast<std::size_t>(count);
    }
    return total == 0 ? s_end : total;
}

std::size_t ARXZipInputStreamFramework::read(NEBByteBuffer& target, std::size_t n)
{
    // A sum that overflows fails like any size that can't be reserved. At least one byte, since an empty
    // buffer has no address.
    std::size_t const missing = std::max<std::size_t>(n, 1);
    target.reserve(missing > SIZE_MAX - target.pcount() ? SIZE_MAX : target.pcount() + missing);
    std::size_t const count = read(target.str() + target.pcount(), n);
    if (count == 0 || count == s_end)
        return s_end;
    target.setLength(target.pcount() + count);
    return count;
}

void ARXZipInputStreamFramework::close()
{
    if (!m_zipFile)
        return;
    if (m_entryOpen)
        unzCloseCurrentFile(m_zipFile);
    checked(unzClose(std::exchange(m_zipFile, nullptr)));
}

bool ARXZipInputStreamFramework::getFirstEntry()
{
    return m_zipFile && checked(unzGoToFirstFile(m_zipFile)) == UNZ_OK;
}

bool ARXZipInputStreamFramework::getNextEntry()
{
    return m_zipFile && checked(unzGoToNextFile(m_zipFile)) == UNZ_OK;
}

// minizip's own search does not take "\" as a separator, and cuts long names.
bool ARXZipInputStreamFramework::locate(char const* name)
{
    NEB_ASSERT_NAMED(name, "[ARZipInputStreamFramwork::locateFile] Path cannot be null.");
    char entryName[s_nameBufferSize];
    for (bool isEntry = getFirstEntry(); isEntry; isEntry = getNextEntry())
    {
        if (!readCurrentName(entryName))
            return false;
        if (ARXFmDir::isEquivalentPath(entryName, name))
            return true;
    }
    return false;
}

bool ARXZipInputStreamFramework::getCurrentEntryName(std::string& name)
{
    char entryName[s_nameBufferSize];
    if (!m_zipFile || !readCurrentName(entryName))
        return false;
    name = entryName;
    return true;
}

bool ARXZipInputStreamFramework::getCurrentEntryInfo(zipEntry& entry)
{
    unz_file_info info{};
    if (!m_zipFile || readCurrentFileInfo(info, entry.szFileName, sizeof entry.szFileName) != UNZ_OK)
        return false;
    copyEntryNumbers(info, entry);
    return true;
}

bool ARXZipInputStreamFramework::openCurrentEntry()
{
    if (!m_zipFile)
        return false;
    if (m_entryOpen)
        unzCloseCurrentFile(m_zipFile);
    m_entryOpen = false;

    // Only the numbers: without a buffer no name is too long.
    unz_file_info info{};
    if (checked(unzGetCurrentFileInfo(m_zipFile, &info, nullptr, 0, nullptr, 0, nullptr, 0)) != UNZ_OK)
        return false;
    m_entryOpen = openReadableEntry(m_zipFile, entryNumber(info.flag), entryNumber(info.compression_method));
    rethrowRaised(m_guard);
    return m_entryOpen;
}

// minizip needs a record to fill, and terminates only a name that is shorter than the buffer.
int ARXZipInputStreamFramework::readCurrentFileInfo(unz_file_info& info, char* szFileName,
                                                    uLong fileNameBufferSize)
{
    szFileName[fileNameBufferSize - 1] = 0;
    int const result = checked(
        unzGetCurrentFileInfo(m_zipFile, &info, szFileName, fileNameBufferSize, nullptr, 0, nullptr, 0));
    if (result == UNZ_OK)
        NEB_ASSERT_NAMED((0 == szFileName[fileNameBufferSize-1]), "File name is larger than data structure used to hold it.");
    return result;
}

bool ARXZipInputStreamFramework::readCurrentName(char (&name)[s_nameBufferSize])
{
    unz_file_info info;
    return readCurrentFileInfo(info, name, sizeof name) == UNZ_OK;
}

int ARXZipInputStreamFramework::checked(int result)
{
    rethrowRaised(m_guard);
    return result;
}
