#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>

#include "NEBCore/NEBFmDir.h"
#include "host/Commands.h"
#include "host/Failure.h"
#include "host/Progress.h"
#include "host/ZipSource.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"

namespace
{
struct ZipOptions
{
    std::string m_archive;
    std::string m_directory;
    std::string m_base;
    bool m_flat = false;
};

std::string resolved(std::string path)
{
    NEBFmDir::resolveEffectivePath(path);
    return path;
}

// Removes an archive that was begun and not finished; a device that was given as the archive stays.
class Unfinished
{
public:
    explicit Unfinished(std::string const& archive) : m_archive(archive) {}
    ~Unfinished()
    {
        std::error_code ignored;
        if (!m_finished && std::filesystem::is_regular_file(m_archive, ignored))
            std::remove(m_archive.c_str());
    }
    Unfinished(Unfinished const&) = delete;
    Unfinished& operator=(Unfinished const&) = delete;
    void finish() { m_finished = true; }

private:
    std::string const& m_archive;
    bool m_finished = false;
};

void write(std::string const& archive, std::string const& directory, char const* base,
           ZipSource const& source)
{
    ARXZipFile zip;
    zip.create(archive.c_str());
    Unfinished unfinished(archive);
    {
        Progress const progress(source.m_sizes, Progress::Watch::bytesRead);
        zip.addDirectory(directory.c_str(), base, true, false);
        zip.close();
    }
    // The closing of an archive reports nothing, a full disk included, so what came out is counted.
    auto const written = static_cast<std::size_t>(ARXUnzipFile(archive.c_str()).getFileCount());
    if (written != source.m_sizes.size())
        failed(NEB_HERE, archive + ": " + std::to_string(written) + " of " +
                             std::to_string(source.m_sizes.size()) + " files were written");
    unfinished.finish();
}

int zip(ZipOptions const& options)
{
    // Resolved here, so that an archive inside the tree is recognised and left out of itself.
    std::string const archive = resolved(options.m_archive);
    std::string const directory = resolved(options.m_directory);
    std::string const base = options.m_flat ? std::string() : resolved(options.m_base);
    bool const isRelativeToDirectory = !options.m_flat && options.m_base.empty();

    ZipSource const source(directory, archive);
    write(archive, directory, isRelativeToDirectory ? nullptr : base.c_str(), source);
    for (std::string const& path : source.m_leftOut)
        std::cerr << "left out, since its path begins with the archive's: " << path << '\n';
    std::cout << source.m_sizes.size() << " files\n";
    return 0;
}
}  // namespace

void addZipCommand(CLI::App& app, Action& chosen)
{
    auto const options = std::make_shared<ZipOptions>();
    CLI::App* command = app.add_subcommand("zip", "Pack a directory tree into a new archive");
    command->add_option("ARCHIVE", options->m_archive, "The archive; an existing one is replaced")
        ->required();
    command->add_option("DIR", options->m_directory)->required()->check(CLI::ExistingDirectory);
    CLI::Option* base =
        command->add_option("--base", options->m_base, "Name entries relative to this directory");
    command->add_flag("--flat", options->m_flat, "Name entries by the last element alone")->excludes(base);
    command->callback([&chosen, options] { chosen = [options] { return zip(*options); }; });
}
