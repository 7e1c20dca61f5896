#include <ctime>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ArchiveInput.h"
#include "Commands.h"
#include "Failure.h"
#include "OutputFile.h"
#include "Progress.h"
#include "os/OsFile.h"
#include "path/ARXFmDir.h"

namespace
{
namespace fs = std::filesystem;
unsigned constexpr s_anybody = 0666;  // less the umask
std::uint32_t constexpr s_dosFolder = 0x10;

struct UnzipOptions
{
    std::string m_archive;
    std::string m_folder;
    bool m_ignorePath = false;
};

// By its name; an entry made on DOS may say it by its attribute alone (APPNOTE.TXT, 4.4.2 and 4.4.15).
bool isFolder(ArchiveInput::Entry const& entry)
{
    std::string const name = entry.szFileName;
    bool const isFromDos = entry.version >> 8 == 0;
    return (!name.empty() && ARXFmDir::isPathSeparator(name.back())) ||
           (isFromDos && (entry.externalAttributes & s_dosFolder) != 0 && entry.uncompressedSize == 0);
}

void makeFolder(fs::path const& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        failed(NEB_HERE, folder, error.message());
}

void setDate(std::string const& path, ArchiveInput::Entry const& entry)
{
    std::optional<std::tm> date = dateOf(entry);
    if (!date)
        return;
    date->tm_isdst = -1;  // found from the date
    timespec const times[] = {{0, UTIME_OMIT}, {std::mktime(&*date), 0}};
    if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0)
        systemFailed(NEB_HERE, path);
}

// Tells a file from all others, whatever links and spellings lead to it; zeros where there is none.
using FileId = std::pair<dev_t, ino_t>;

FileId identify(fs::path const& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0 ? FileId(status.st_dev, status.st_ino) : FileId();
}

void extract(ArchiveInput& archive, ArchiveInput::Entry const& entry, fs::path const& folder, bool ignorePath,
             Progress& progress, std::set<FileId>& extracted)
{
    fs::path relative = relativePath(entry.szFileName);
    if (isFolder(entry))
    {
        if (entry.uncompressedSize != 0)
            failed(NEB_HERE, "is named as a folder, but holds data");
        return makeFolder(relative == "." ? folder : folder / relative);
    }
    if (ignorePath)
        relative = relative.filename();
    fs::path const target = folder / relative;
    if (archive.isSameFile(target))
        failed(NEB_HERE, "would replace the archive itself");
    if (extracted.count(identify(target)) != 0)
        failed(NEB_HERE, "would replace the file of another entry");

    makeFolder(target.parent_path());
    OutputFile output(target, s_anybody);
    archive.copyEntry(entry,
                      [&](char const* data, std::size_t size)
                      {
                          output.write(data, size);
                          progress.addBytes(size);
                      });
    setDate(output.getPath(), entry);
    FileId const id = identify(output.getPath());
    output.placeUnsynced();
    extracted.insert(id);
    progress.addFile();
}

// Once for all files: to wait for each would take minutes where there are many.
void syncFileSystem(fs::path const& folder)
{
    OsFile directory;
    if (!directory.open(folder.c_str(), OsFile::s_read | OsFile::s_directory) ||
        syncfs(directory.getDescriptor()) != 0)
        systemFailed(NEB_HERE, folder);
}

int unzip(UnzipOptions const& options)
{
    if (options.m_archive == "-" && options.m_folder.empty())
        failed(NEB_HERE, "FOLDER is required where the archive comes from standard input");
    ArchiveInput archive(options.m_archive);
    fs::path folder = options.m_folder;
    if (folder.empty())
        folder = fs::canonical(options.m_archive).parent_path();
    makeFolder(folder);
    std::uint64_t count = 0;
    try
    {
        Progress progress;
        std::set<FileId> extracted;
        count = archive.visitEntries(
            [&](ArchiveInput::Entry const& entry)
            { extract(archive, entry, folder, options.m_ignorePath, progress, extracted); });
    }
    catch (...)
    {
        syncFileSystem(folder);  // what was right stays
        throw;
    }
    syncFileSystem(folder);
    std::cout << count << " entries\n";
    return 0;
}
}  // namespace

void addUnzipCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] = addCommand(app, chosen, "unzip",
                                               "Extract an archive, in place of files of the same names; "
                                               "entries that can't be extracted are named, the others stay",
                                               unzip);
    addRequired(*command, "ARCHIVE", options->m_archive, "The archive, or - for standard input");
    command->add_option("FOLDER", options->m_folder, "Where to; beside the archive if not given")
        ->check(refuseEmpty);
    command->add_flag("--ignore-path", options->m_ignorePath, "Put every file into the folder itself");
}
