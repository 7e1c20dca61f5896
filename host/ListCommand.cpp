#include <cstdio>
#include <memory>

#include "host/ArchiveInput.h"
#include "host/Commands.h"

namespace
{
void printEntry(ARXZipInputStreamI::zipEntry const& entry)
{
    double const size = entry.uncompressedSize;
    double const saved = size > 0 ? 100 * (1 - entry.compressedSize / size) : 0;
    unsigned const date = entry.dosDate >> 16;
    unsigned const time = entry.dosDate & 0xFFFF;
    std::printf("%s\t%u\t%u\t%.0f%%\t%04u-%02u-%02u %02u:%02u:%02u\t%08x\n",
                printable(entry.szFileName).c_str(), entry.uncompressedSize, entry.compressedSize, saved,
                1980 + (date >> 9), date >> 5 & 15, date & 31, time >> 11, time >> 5 & 63, (time & 31) * 2,
                entry.crc);
}

int list(std::string const& path)
{
    ArchiveInput archive(path);
    ARXZipInputStream& stream = archive.getStream();
    ARXZipInputStreamI::zipEntry entry;
    std::puts("name\tsize\tpacked\tsaved\tdate\tcrc");
    for (bool more = stream.getFirstEntry(); more && stream.getCurrentEntryInfo(entry);
         more = stream.getNextEntry())
        printEntry(entry);
    return 0;
}
}  // namespace

void addListCommand(CLI::App& app, Action& chosen)
{
    auto const path = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand("list", "List an archive, tabs between the columns");
    command->add_option("ARCHIVE", *path, "The archive, or - for standard input")->required();
    command->callback([&chosen, path] { chosen = [path] { return list(*path); }; });
}
