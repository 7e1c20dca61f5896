#include "FolderArchive.h"

#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <zlib.h>

#include "os/OsPlacedFile.h"
#include "zip/ARXZipFile.h"

namespace
{
// The format's 4 GiB, less some room for the directory of entries.
std::uint64_t constexpr s_largestArchive = 0xffff0000;

// Opens each folder from the one above it, so that a symbolic link that is put in place meanwhile leads
// nowhere.
class FolderWalk
{
public:
    explicit FolderWalk(ARXZipFile& archive) : m_archive(archive) {}

    void add(Descriptor const& folder, std::string const& prefix)
    {
        for (auto const& entry : std::filesystem::directory_iterator(folder.getPath()))
        {
            std::string const name = entry.path().filename().string();
            if (Descriptor const below = openBelow(folder.get(), name, O_DIRECTORY))
                add(below, prefix + name + "/");
            else if (auto const file = StoredFile::open(openBelow(folder.get(), name, 0)))
                addFile(*file, prefix + name);
        }
    }

private:
    void addFile(StoredFile const& file, std::string const& name)
    {
        m_size += file.getSize();
        if (m_size > s_largestArchive)
            throw std::runtime_error("a folder is too large for a zip archive");
        std::tm time{};
        std::time_t const modified = file.getModified();
        ::localtime_r(&modified, &time);
        zip_fileinfo info{};
        info.tmz_date = {static_cast<uInt>(time.tm_sec),  static_cast<uInt>(time.tm_min),
                         static_cast<uInt>(time.tm_hour), static_cast<uInt>(time.tm_mday),
                         static_cast<uInt>(time.tm_mon),  static_cast<uInt>(time.tm_year)};
        m_archive.openNewFileInZip(name.c_str(), &info, nullptr, ARXZipFile::compressDeflated, Z_BEST_SPEED);
        auto const write = [this](char const* data, std::size_t size)
        {
            std::string piece(data, size);  // the archive takes bytes that it might change
            m_archive.writeInFileInZip(reinterpret_cast<unsigned char*>(piece.data()),
                                       static_cast<unsigned>(size));
            return true;
        };
        if (!file.read(0, file.getSize(), write))
            throw std::runtime_error(name + ": changed while it was read, or is damaged");
        m_archive.closeFileInZip();
    }

    ARXZipFile& m_archive;
    std::uint64_t m_size = 0;
};
}  // namespace

// An archive's directory of entries comes last and its writer goes back to complete the entries' headers, so
// it can't be sent while it is made. The file has no name any more when this returns.
std::shared_ptr<StoredFile> makeArchive(Descriptor const& folder)
{
    OsPlacedFile temporary;
    if (!temporary.create((std::filesystem::temp_directory_path() / "arxgate.zip").string(), 0600))
        throw std::runtime_error(temporary.getFailure());
    ARXZipFile archive;
    archive.create(temporary.getPath().c_str());
    FolderWalk(archive).add(folder, "");
    archive.close();
    return StoredFile::open(Descriptor(::open(temporary.getPath().c_str(), O_RDONLY | O_CLOEXEC)));
}
