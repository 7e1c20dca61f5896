#include <cstdio>
#include <iostream>

#include "ArchiveInput.h"
#include "Commands.h"
#include "Text.h"

namespace
{
struct ListOptions
{
    std::string m_archive;
    bool m_json = false;
};

template <class... Values>
std::string formatted(char const* format, Values... values)
{
    char text[128];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string dateOf(ArchiveInput::Entry const& entry)
{
    unsigned const date = entry.dosDate >> 16;
    unsigned const time = entry.dosDate & 0xFFFF;
    return formatted("%04u-%02u-%02u %02u:%02u:%02u", 1980 + (date >> 9), date >> 5 & 15, date & 31,
                     time >> 11, time >> 5 & 63, (time & 31) * 2);
}

void printColumns(ArchiveInput::Entry const& entry)
{
    double const size = entry.uncompressedSize;
    double const saved = size > 0 ? 100 * (1 - entry.compressedSize / size) : 0;
    std::cout << printable(entry.szFileName)
              << formatted("\t%u\t%u\t%.0f%%\t%s\t%08x\n", entry.uncompressedSize, entry.compressedSize,
                           saved, dateOf(entry).c_str(), entry.crc);
}

void printJson(ArchiveInput::Entry const& entry)
{
    std::cout << '{' << jsonMember("name", entry.szFileName)
              << formatted(",\"size\":%u,\"packed\":%u,\"date\":\"%s\",\"crc\":\"%08x\"}\n",
                           entry.uncompressedSize, entry.compressedSize, dateOf(entry).c_str(), entry.crc);
}

int list(ListOptions const& options)
{
    ArchiveInput archive(options.m_archive);
    if (!options.m_json)
        std::cout << "name\tsize\tpacked\tsaved\tdate\tcrc\n";
    archive.visitEntries(options.m_json ? printJson : printColumns);
    return 0;
}
}  // namespace

void addListCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] =
        addCommand(app, chosen, "list", "List an archive, tabs between the columns", list);
    command->add_option("ARCHIVE", options->m_archive, "The archive, or - for standard input")->required();
    command->add_flag("--json", options->m_json, "Print an object of JSON for each entry, a line each");
}
