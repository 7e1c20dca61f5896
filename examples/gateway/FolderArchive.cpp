#include "FolderArchive.h"

#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <zlib.h>

#include "os/OsPlacedFile.h"
#include "zip/ARXZipFile.h"

namespace
{
zip_fileinfo describe(StoredFile const& file)
{
    std::time_t const modified = file.getModified();
    std::tm time{};
    ::localtime_r(&modified, &time);
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
        OsFile const below = openBelow(folder, name, O_DIRECTORY);
        if (below.isOpen())
            addFolder(archive, below, prefix + name + "/");
        else if (auto const file = StoredFile::open(openBelow(folder, name, 0)))
            addFile(archive, *file, prefix + name);
    }
}
}  // namespace

// An archive's directory of entries comes last and its writer goes back to complete the entries' headers, so
// it can't be sent while it is made. The file has no name any more when this returns.
std::shared_ptr<StoredFile> makeArchive(OsFile const& folder)
{
    OsPlacedFile temporary;
    if (!temporary.create((std::filesystem::temp_directory_path() / "arxgate.zip").string(), 0600))
        throw std::runtime_error(temporary.getFailure());
    ARXZipFile archive;
    archive.create(temporary.getPath().c_str());
    addFolder(archive, folder, "");
    archive.close();
    return StoredFile::open(OsFile(::open(temporary.getPath().c_str(), O_RDONLY | O_CLOEXEC)));
}
