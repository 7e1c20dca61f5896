// Whatever the archive, nothing appears outside the folder that it is extracted to, and no exception
// is raised: the documented ones need a folder or memory that is missing.

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXUnzipFile.h"

namespace
{
namespace fs = std::filesystem;

// A target so deep in watched folders that no name of 259 bytes climbs out of them. Each of these holds but
// the next, and its time tells whether it was ever otherwise.
class WatchedTarget
{
public:
    WatchedTarget() : m_archive(m_aside / "archive"), m_target(m_outer.path())
    {
        for (int i = 0; i < 88; ++i)
        {
            m_watched.push_back(m_target);
            m_target += "/d";
        }
        fs::create_directories(m_target);
        m_times = times();
    }

    void extract(std::uint8_t const* data, std::size_t size, bool ignorePath)
    {
        fs::remove(m_archive);  // a file that is overwritten goes to the disk at once
        std::ofstream(m_archive, std::ios::binary)
            .write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
        ARXUnzipFile::unzip(m_archive.c_str(), m_target.c_str(), ignorePath);
        mustHold(times() == m_times, "nothing appears outside the target");
        mustHold(fs::file_size(m_archive) == size, "the archive stays as it is");
        for (auto const& entry : fs::directory_iterator(m_target))
            fs::remove_all(entry.path());
    }

private:
    std::vector<fs::file_time_type> times() const
    {
        std::vector<fs::file_time_type> times;
        for (fs::path const& folder : m_watched)
            times.push_back(fs::last_write_time(folder));
        return times;
    }

    TemporaryFolder m_aside;
    TemporaryFolder m_outer;
    std::string m_archive;
    std::string m_target;
    std::vector<fs::path> m_watched;
    std::vector<fs::file_time_type> m_times;
};
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static WatchedTarget s_target;
    s_target.extract(data, size, false);
    s_target.extract(data, size, true);
    return 0;
}
