// An archive made of any entries reads back as just these: names, contents, checksums and order.

#include <vector>

#include "NEBCore/NEBUtCrc32.h"
#include "fuzz/Fuzz.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"
#include "zip/ARXZipInputStream.h"

namespace
{
struct Entry
{
    std::string m_name, m_contents;
};

// Writes an entry as the input has it: name, method, level and how often each piece is repeated in itself,
// and pieces until an empty one.
Entry addEntry(ARXZipFile& archive, FuzzInput& input)
{
    Entry entry;
    entry.m_name = ("n" + input.takeShortText()).c_str();  // never empty
    unsigned const how = input.takeByte();
    int const level = static_cast<int>(how >> 1) % 11 - 1;
    auto const method = how % 2 != 0 ? ARXZipFile::compressDeflated : ARXZipFile::compressStored;
    archive.openNewFileInZip(entry.m_name.c_str(), nullptr, nullptr, method, level);
    unsigned const repetitions = how / 16 % 4 * 100 + 1;  // up to 75 KiB a piece
    for (std::string text; !(text = input.takeShortText()).empty();)
    {
        std::string piece;
        for (unsigned i = 0; i < repetitions; ++i)
            piece += text;
        archive.writeInFileInZip(reinterpret_cast<unsigned char*>(piece.data()),
                                 static_cast<unsigned>(piece.size()));
        entry.m_contents += piece;
    }
    if (how >= 128)
        archive.closeFileInZip();
    return entry;
}

std::string readContents(ARXZipInputStream& stream)
{
    std::string contents;
    char piece[1000];
    for (std::size_t count; (count = stream.read(piece, sizeof piece)) != OJDInputStream::s_end;)
        contents.append(piece, count);
    return contents;
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static TemporaryFolder s_folder;
    std::string const path = s_folder / "archive";
    FuzzInput input(data, size);
    std::vector<Entry> entries;
    ARXZipFile archive;
    std::remove(path.c_str());  // a file that is overwritten goes to the disk at once
    archive.create(path.c_str());
    while (!input.empty())
        entries.push_back(addEntry(archive, input));
    archive.close();
    if (entries.empty())
        return 0;  // such an archive can't be opened

    mustHold(ARXUnzipFile(path.c_str()).getFileCount() == static_cast<int>(entries.size()),
             "the count is right");
    ARXZipInputStream stream(path.c_str());
    bool isEntry = stream.getFirstEntry();
    for (Entry const& entry : entries)
    {
        ARXZipInputStream::zipEntry info{};
        mustHold(isEntry && stream.getCurrentEntryInfo(info) && stream.openCurrentEntry(),
                 "the entry is there");
        mustHold(info.szFileName == entry.m_name, "names come back");
        mustHold(readContents(stream) == entry.m_contents, "contents come back");
        mustHold(info.crc == NEBUtCrc32::crc32(0, entry.m_contents.data(), entry.m_contents.size()),
                 "checksums are right");
        isEntry = stream.getNextEntry();
    }
    mustHold(!isEntry, "there is no further entry");
    return 0;
}
