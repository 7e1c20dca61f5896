#include <iostream>
#include <memory>
#include <vector>

#include "NEBCore/NEBUtCrc32.h"
#include "host/ArchiveInput.h"
#include "host/Commands.h"
#include "host/Failure.h"

namespace
{
struct CatOptions
{
    std::string m_archive;
    std::string m_name;
};

// The stream hands out what it can and leaves the check of the whole to its user.
void copyChecked(ARXZipInputStream& stream, ARXZipInputStreamI::zipEntry const& entry)
{
    std::vector<char> piece(65536);
    std::uint64_t size = 0;
    std::uint32_t crc = 0;
    std::size_t count = 0;
    while ((count = stream.read(piece.data(), piece.size())) != static_cast<std::size_t>(-1))
    {
        size += count;
        crc = NEBUtCrc32::crc32(crc, piece.data(), count);
        std::cout.write(piece.data(), static_cast<std::streamsize>(count));
    }
    if (size != entry.uncompressedSize || crc != entry.crc)
        failed(NEB_HERE, printable(entry.szFileName) + ": is damaged");
}

int cat(CatOptions const& options)
{
    ArchiveInput archive(options.m_archive);
    ARXZipInputStream& stream = archive.getStream();
    ARXZipInputStreamI::zipEntry entry;
    if (!stream.locate(options.m_name.c_str()) || !stream.getCurrentEntryInfo(entry))
    {
        std::cerr << "arxhost: no entry " << printable(options.m_name) << '\n';
        return 1;
    }
    if (!stream.openCurrentEntry())
        failed(NEB_HERE, printable(options.m_name) + ": is encrypted, or packed in a way that can't be read");
    copyChecked(stream, entry);
    return 0;
}
}  // namespace

void addCatCommand(CLI::App& app, Action& chosen)
{
    auto const options = std::make_shared<CatOptions>();
    CLI::App* command =
        app.add_subcommand("cat", "Print an archive's entry; exit code 1 if there is none of that name");
    command->add_option("ARCHIVE", options->m_archive, "The archive, or - for standard input")->required();
    command->add_option("NAME", options->m_name)->required();
    command->callback([&chosen, options] { chosen = [options] { return cat(*options); }; });
}
