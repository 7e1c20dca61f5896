#include "FolderArchive.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include "zip/ARXZipFile.h"
#include "zip/ARXZipInputStream.h"

namespace
{
zip_fileinfo describe(StoredFile const& file)
{
    std::time_t const modified = file.getModified();
    std::tm time{};
    ::localtime_r(&modified, &time);
    if (time.tm_year < 80)
        time = {0, 0, 0, 1, 0, 80, 0, 0, -1, 0, nullptr};  // where the format's dates begin
    zip_fileinfo info{};
    info.tmz_date = {static_cast<uInt>(time.tm_sec),  static_cast<uInt>(time.tm_min),
                     static_cast<uInt>(time.tm_hour), static_cast<uInt>(time.tm_mday),
                     static_cast<uInt>(time.tm_mon),  static_cast<uInt>(time.tm_year)};
    return info;
}

void addFile(ARXZipFile& archive, StoredFile const& file, std::string const& name)
{
    zip_fileinfo info = describe(file);
    archive.openNewFileInZip(name.c_str(), &info, nullptr, ARXZipFile::compressDeflated, Z_BEST_SPEED);
    auto const write = [&archive](char const* data, std::size_t size)
    {
        std::string piece(data, size);  // the archive takes bytes that it might change
        archive.writeInFileInZip(reinterpret_cast<unsigned char*>(piece.data()), static_cast<unsigned>(size));
        return true;
    };
    if (!file.read(0, file.getSize(), write))
        throw std::runtime_error(name + ": changed while it was read, or is damaged");
    archive.closeFileInZip();
}

// Opens each folder from the one above it, so that a symbolic link that is put in place meanwhile leads
// nowhere.
void addFolder(ARXZipFile& archive, OsFile const& folder, std::string const& prefix)
{
    for (auto const& entry : std::filesystem::directory_iterator(getPath(folder)))
    {
        std::string const name = entry.path().filename().string();
        if (!isServableName(name))
            continue;
        OsFile const below = openBelow(folder, name, O_DIRECTORY);
        if (below.isOpen())
            addFolder(archive, below, prefix + name + "/");
        else if (auto const file = StoredFile::open(openBelow(folder, name, 0)))
            addFile(archive, *file, prefix + name);
    }
}
}  // namespace

// An archive's directory of entries comes last and its writer goes back to complete the entries' headers, so
// it can't be sent while it is made. The temporary file has no name, so that nothing is left of it.
std::shared_ptr<StoredFile> makeArchive(OsFile const& folder)
{
    std::string name = (std::filesystem::temp_directory_path() / "arxgate-XXXXXX").string();
    OsFile temporary(::mkostemp(name.data(), O_CLOEXEC));
    if (!temporary.isOpen() || ::unlink(name.c_str()) != 0)
        throw std::system_error(errno, std::generic_category(), name);
    std::string const path = getPath(temporary);
    ARXZipFile archive;
    archive.create(path.c_str());
    addFolder(archive, folder, "");
    archive.close();
    ARXZipInputStream(path.c_str());  // raises where a full disk cut off the directory of entries
    return StoredFile::open(OsFile(temporary.release()));
}
