#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <optional>
#include <string>

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

std::string crcText(ArchiveInput::Entry const& entry)
{
    char text[9];
    std::snprintf(text, sizeof text, "%08x", entry.crc);
    return text;
}

// The words for a value that the archive doesn't hold: "-" in columns, null in JSON.
std::string sizeText(std::uint32_t size, char const* nothing)
{
    return size == UINT32_MAX ? nothing : std::to_string(size);  // stored in 64 bits, which are not read
}

std::string dateText(ArchiveInput::Entry const& entry, char const* nothing, char const* quote)
{
    std::optional<std::tm> const date = dateOf(entry);
    char text[32];
    return date && std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &*date) != 0
               ? quote + std::string(text) + quote
               : nothing;
}

std::string savedText(ArchiveInput::Entry const& entry)
{
    if (entry.uncompressedSize == UINT32_MAX || entry.compressedSize == UINT32_MAX)
        return "-";
    double const size = entry.uncompressedSize;
    double const saved = size > 0 ? 100 * (1 - entry.compressedSize / size) : 0;
    return std::to_string(std::llround(saved)) + '%';
}

void printColumns(ArchiveInput::Entry const& entry)
{
    std::cout << printable(entry.szFileName) << '\t' << sizeText(entry.uncompressedSize, "-") << '\t'
              << sizeText(entry.compressedSize, "-") << '\t' << savedText(entry) << '\t'
              << dateText(entry, "-", "") << '\t' << crcText(entry) << '\n';
}

void printJson(ArchiveInput::Entry const& entry)
{
    std::cout << '{' << jsonMember("name", entry.szFileName)
              << ",\"size\":" << sizeText(entry.uncompressedSize, "null")
              << ",\"packed\":" << sizeText(entry.compressedSize, "null")
              << ",\"date\":" << dateText(entry, "null", "\"") << ",\"crc\":\"" << crcText(entry) << "\"}\n";
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
    addRequired(*command, "ARCHIVE", options->m_archive, "The archive, or - for standard input");
    command->add_flag("--json", options->m_json, "Print an object of JSON for each entry, a line each");
}
