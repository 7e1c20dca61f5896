// Whatever the archive, nothing appears outside the folder that it is extracted to, and nothing leaves but
// the documented exceptions: none here, where folders and memory are to be had.

#include <filesystem>
#include <fstream>

#include "fuzz/Fuzz.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXUnzipFile.h"

namespace
{
namespace fs = std::filesystem;

// A target so deep in a watched folder that no name of 259 bytes climbs out of that, and an archive in it.
class WatchedFolder
{
public:
    WatchedFolder() : m_archive(m_outer / "archive"), m_target(m_outer.path())
    {
        for (int i = 0; i < 87; ++i)
            m_target += "/d";
        fs::create_directories(m_target);
        m_before = list();
    }

    void extract(std::uint8_t const* data, std::size_t size, bool ignorePath)
    {
        std::ofstream(m_archive, std::ios::binary)
            .write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
        ARXUnzipFile::unzip(m_archive.c_str(), m_target.c_str(), ignorePath);
        mustHold(fs::file_size(m_archive) == size, "the archive stays as it is");
        fs::remove(m_archive);
        mustHold(fs::is_directory(m_target), "the target stays");
        fs::remove_all(m_target);
        fs::create_directory(m_target);
        mustHold(list() == m_before, "nothing appears outside the target");
    }

private:
    std::string list() const
    {
        std::string names;
        for (auto const& entry : fs::recursive_directory_iterator(m_outer.path()))
            names += entry.path().string() + '\n';
        return names;
    }

    TemporaryFolder m_outer;
    std::string m_archive;
    std::string m_target;
    std::string m_before;
};
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static WatchedFolder s_folder;
    s_folder.extract(data, size, false);
    s_folder.extract(data, size, true);
    return 0;
}
