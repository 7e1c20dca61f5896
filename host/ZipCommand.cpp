#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <vector>

#include <sys/stat.h>

#include "ArchiveInput.h"
#include "Commands.h"
#include "Failure.h"
#include "InputFile.h"
#include "Interrupt.h"
#include "NEBCore/NEBUtCrc32.h"
#include "OutputFile.h"
#include "Progress.h"
#include "path/ARXFmDir.h"
#include "zip/ARXZipFile.h"

namespace
{
namespace fs = std::filesystem;
unsigned constexpr s_anybody = 0666;  // less the umask
auto constexpr s_method = ARXZipFile::compressDeflated;
int constexpr s_level = 6;                     // zlib's own
std::uint64_t constexpr s_limit = UINT32_MAX;  // of a file and of the archive, in bytes; the format's own
std::size_t constexpr s_longestName = 258;     // in bytes; the library finds no longer ones again

struct ZipOptions
{
    std::string m_archive;
    std::string m_directory;
    std::string m_base;
    bool m_flat = false;
};

struct SourceFile
{
    std::string m_path;
    std::string m_name;  // in the archive
    std::uint64_t m_size;
    std::time_t m_time;
    std::uint32_t m_crc = 0;  // of what went into the archive
};
using SourceFiles = std::vector<SourceFile>;

SourceFile describe(std::string const& path, std::string const& base)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        systemFailed(NEB_HERE, path);
    SourceFile file{path, "", static_cast<std::uint64_t>(status.st_size), status.st_mtime};
    ARXFmDir::getPathTail(file.m_name, base.c_str(), path.c_str());
    ARXFmDir::normalizePathSeparator(file.m_name);
    if (file.m_size >= s_limit)
        failed(NEB_HERE, path, "has 4 GiB or more, which an archive can't hold");
    if (file.m_name.size() > s_longestName)
        failed(NEB_HERE, path, "its name in the archive would have more than 258 bytes");
    std::string const extracted = naming(path, [&] { return relativePath(file.m_name); });
    if (extracted != file.m_name)
        failed(NEB_HERE, path,
               "would be \"" + file.m_name + "\" in the archive, but \"" + extracted + "\" when extracted");
    return file;
}

// The files of a directory by the bytes of their names, then those of its subdirectories. Links to files
// count as files, links to folders and to nowhere are left out.
void collect(SourceFiles& files, fs::path const& directory, std::string const& base,
             std::string const& archive)
{
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
        entries.push_back(*entry);
    if (error)
        failed(NEB_HERE, directory, error.message());
    std::sort(entries.begin(), entries.end(),
              [](auto const& a, auto const& b) { return a.path().native() < b.path().native(); });

    std::vector<fs::path> directories;
    for (fs::directory_entry const& entry : entries)
    {
        stopIfInterrupted();
        fs::file_type const type = entry.status(error).type();  // of a link's target
        if (type == fs::file_type::none && error != std::errc::too_many_symbolic_link_levels)
            failed(NEB_HERE, entry.path(), error.message());
        if (type == fs::file_type::directory && !entry.is_symlink(error))
            directories.push_back(entry.path());
        else if (type != fs::file_type::regular)
            printError(entry.path().native() + ": is left out, since it is no regular file");
        else if (entry.path() != archive)
            files.push_back(describe(entry.path(), base));
    }
    for (fs::path const& subdirectory : directories)
        collect(files, subdirectory, base, archive);
}

void requireUniqueNames(SourceFiles const& files)
{
    std::vector<std::string> names;
    for (SourceFile const& file : files)
        names.push_back(file.m_name);
    std::sort(names.begin(), names.end());
    auto const twice = std::adjacent_find(names.begin(), names.end());
    if (twice != names.end())
        failed(NEB_HERE, *twice, "two files would have this name in the archive");
}

// Dates are local time; the format's begin in 1980.
zip_fileinfo makeFileInfo(std::time_t time)
{
    std::tm local{};
    localtime_r(&time, &local);
    if (local.tm_year < 80)
        local = {0, 0, 0, 1, 0, 80, 0, 0, -1, 0, nullptr};
    zip_fileinfo info{};
    info.tmz_date = {static_cast<uInt>(local.tm_sec),  static_cast<uInt>(local.tm_min),
                     static_cast<uInt>(local.tm_hour), static_cast<uInt>(local.tm_mday),
                     static_cast<uInt>(local.tm_mon),  static_cast<uInt>(local.tm_year)};
    return info;
}

// Raised where the archive, not one of the files, is what fails.
struct ArchiveFailed : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// An archive that takes its name only when all that was to be written can be read back.
class ArchiveOutput
{
public:
    explicit ArchiveOutput(std::string const& archive) : m_name(archive), m_file(archive, s_anybody)
    {
        write([this] { m_zip.create(m_file.getPath().c_str()); });
    }

    // Raises NEBException where file can't be read as it was found.
    void add(SourceFile& file, Progress& progress)
    {
        zip_fileinfo info = makeFileInfo(file.m_time);
        write([&] { m_zip.openNewFileInZip(file.m_name.c_str(), &info, nullptr, s_method, s_level); });
        std::uint64_t size = 0;
        auto const addPiece = [&](char* data, std::size_t count)
        {
            size += count;
            if (size > file.m_size)
                failed(NEB_HERE, file.m_path, "grew while it was read");
            auto* const bytes = reinterpret_cast<unsigned char*>(data);
            write([&] { m_zip.writeInFileInZip(bytes, static_cast<unsigned>(count)); });
            file.m_crc = NEBUtCrc32::crc32(file.m_crc, data, count);
            progress.addBytes(count);
        };
        readFile(file.m_path, addPiece);
        if (size < file.m_size)
            failed(NEB_HERE, file.m_path, "shrank while it was read");
        progress.addFile();
    }

    // The library reports nothing when it closes an archive, so everything is read back.
    void place(SourceFiles const& files)
    {
        write([this] { m_zip.close(); });
        naming(m_name, [&] { verify(files); });
        m_file.place();
    }

private:
    template <class Action>
    void write(Action const& action)
    {
        errno = 0;
        try
        {
            action();
        }
        catch (NEBThrowable const& error)
        {
            std::string const reason = errno != 0 ? std::strerror(errno) : reasonOf(error);
            throw ArchiveFailed(m_name + ": can't be written: " + reason);
        }
        if (fs::file_size(m_file.getPath()) >= s_limit)
            throw ArchiveFailed(m_name + ": would have 4 GiB or more, which is too much for an archive");
    }

    void verify(SourceFiles const& files) const
    {
        ArchiveInput archive(m_file.getPath());
        auto file = files.begin();
        auto const compare = [&](ArchiveInput::Entry const& entry)
        {
            archive.copyEntry(entry, [](char*, std::size_t) {});
            if (file == files.end() || entry.szFileName != file->m_name || entry.crc != file->m_crc)
                failed(NEB_HERE, "was not written as it was read");
            ++file;
        };
        if (archive.visitEntries(compare) != files.size())
            failed(NEB_HERE, "not all files were written");
    }

    std::string m_name;
    OutputFile m_file;
    ARXZipFile m_zip;
};

std::string resolved(fs::path const& path)
{
    return path.empty() ? path : fs::weakly_canonical(path);
}

// Without links in the folder's path, so that an archive in the tree is left out of itself. A link as archive
// is refused.
std::string locate(std::string const& archive)
{
    fs::path const given = fs::absolute(archive);
    return fs::path(resolved(given.parent_path())) / given.filename();
}

SourceFiles collect(ZipOptions const& options, std::string const& archive)
{
    std::string const directory = resolved(options.m_directory);
    std::string const base = options.m_base.empty() ? directory : resolved(options.m_base);
    SourceFiles files;
    collect(files, directory, options.m_flat ? "" : base, archive);
    requireUniqueNames(files);
    return files;
}

// Names the files that can't be read, and returns their number.
std::size_t addAll(ArchiveOutput& output, SourceFiles& files, Progress& progress)
{
    std::size_t failures = 0;
    for (SourceFile& file : files)
    {
        try
        {
            output.add(file, progress);
        }
        catch (NEBThrowable const& error)
        {
            printError(reasonOf(error));
            ++failures;
        }
    }
    return failures;
}

int zip(ZipOptions const& options)
{
    tzset();  // localtime_r alone need not read the time zone
    if (options.m_archive == "-")
        failed(NEB_HERE, "an archive can't go to standard output: sizes are filled in later");
    std::string const archive = locate(options.m_archive);
    SourceFiles files = collect(options, archive);
    ArchiveOutput output(archive);
    {
        Progress progress;
        std::size_t const failures = addAll(output, files, progress);
        if (failures != 0)
            failed(NEB_HERE, archive, "is not written: " + std::to_string(failures) + " files can't be read");
        output.place(files);
    }
    std::cout << files.size() << " files\n";
    return 0;
}
}  // namespace

void addZipCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] =
        addCommand(app, chosen, "zip", "Pack a directory tree into a new archive", zip);
    addRequired(*command, "ARCHIVE", options->m_archive,
                "The archive; an existing one is replaced, but only by one that holds every regular file");
    addRequired(*command, "DIR", options->m_directory, "The directory");
    CLI::Option* base =
        command->add_option("--base", options->m_base, "Name entries relative to this directory");
    base->check(refuseEmpty);
    command->add_flag("--flat", options->m_flat, "Name entries by the last element alone")->excludes(base);
}
