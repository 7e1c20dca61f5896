#include <iostream>
#include <memory>

#include "host/Commands.h"
#include "host/Failure.h"
#include "host/Progress.h"
#include "zip/ARXUnzipFile.h"

namespace
{
struct UnzipOptions
{
    std::string m_archive;
    std::string m_folder;
    bool m_ignorePath = false;
};

class ListedArchive : public ARXUnzipFile
{
public:
    using ARXUnzipFile::ARXUnzipFile;

    // One for each entry; the count that the archive itself tells may be cut to 16 bits.
    std::vector<std::uint64_t> readSizes()
    {
        std::vector<std::uint64_t> sizes;
        UZ_FileInfo info;
        for (bool more = gotoFirstFile(); more && getFileInfo(info); more = gotoNextFile())
            sizes.push_back(info.uncompressedSize);
        return sizes;
    }
};

int unzip(UnzipOptions const& options)
{
    ListedArchive archive(options.m_archive.c_str());
    if (archive.getFileCount() == 0)
        failed(NEB_HERE, options.m_archive + ": no archive, or one without entries");
    std::vector<std::uint64_t> const sizes = archive.readSizes();

    bool extracted = false;
    {
        Progress const progress(sizes, Progress::Watch::bytesWritten);
        extracted = archive.unzip(options.m_ignorePath,
                                  options.m_folder.empty() ? nullptr : options.m_folder.c_str());
    }
    if (!extracted)
        failed(NEB_HERE, options.m_archive + ": an entry can't be extracted");
    std::cout << sizes.size() << " entries\n";
    return 0;
}
}  // namespace

void addUnzipCommand(CLI::App& app, Action& chosen)
{
    auto const options = std::make_shared<UnzipOptions>();
    CLI::App* command = app.add_subcommand("unzip", "Extract an archive");
    command->add_option("ARCHIVE", options->m_archive)->required();
    command->add_option("FOLDER", options->m_folder, "Where to; beside the archive if not given");
    command->add_flag("--ignore-path", options->m_ignorePath, "Put every file into the folder itself");
    command->callback([&chosen, options] { chosen = [options] { return unzip(*options); }; });
}
