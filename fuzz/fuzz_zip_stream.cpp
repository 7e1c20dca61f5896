// Whatever the bytes, a zip stream returns, or raises an assertion or lack of memory. It never reads more
// than was asked for, nor outside the bytes. A FILE* of the same bytes shows all that memory shows, in that
// order.

#include <memory>
#include <vector>

#include "NEBCore/NEBAssertError.h"
#include "NEBCore/NEBByteBuffer.h"
#include "fuzz/Fuzz.h"
#include "zip/ARXZipInputStream.h"

namespace
{
std::size_t constexpr s_byteLimit = 1 << 22;  // of contents, so that no input takes seconds
std::size_t constexpr s_entryLimit = 2000;

template <class Call>
bool isAnswered(Call const& call)
{
    try
    {
        return call();
    }
    catch (NEBAssertError const&)
    {
        return false;
    }
}

// Reads in the three ways in turn.
void readEntry(ARXZipInputStream& stream, std::string& contents)
{
    NEBByteBuffer piece(16, 16);
    char bytes[700];
    std::size_t const wanted[] = {1, sizeof bytes, 3000};
    for (std::size_t turn = 0; contents.size() < s_byteLimit; turn = (turn + 1) % 3)
    {
        std::size_t const count = turn == 0   ? stream.read()
                                  : turn == 1 ? stream.read(bytes, wanted[turn])
                                              : stream.read(piece, wanted[turn]);
        if (count == OJDInputStream::s_end)
            return;
        mustHold(turn == 0 ? count < 256 : count <= wanted[turn], "no more is read than asked for");
        contents += turn == 0   ? std::string(1, static_cast<char>(count))
                    : turn == 1 ? std::string(bytes, count)
                                : std::string(piece.str() + piece.pcount() - count, count);
    }
}

struct Entry
{
    std::string m_name, m_contents;
    bool m_isOpened = false;
};

template <class... Source>
std::vector<Entry> walk(Source... source)
{
    std::vector<Entry> entries;
    std::unique_ptr<ARXZipInputStream> stream;
    if (!isAnswered([&] { return stream = std::make_unique<ARXZipInputStream>(source...), true; }))
        return entries;
    std::size_t bytes = 0;
    bool isAnyOpened = false;
    for (bool isEntry = stream->getFirstEntry();
         isEntry && entries.size() < s_entryLimit && bytes < s_byteLimit; isEntry = stream->getNextEntry())
    {
        Entry entry;
        ARXZipInputStream::zipEntry info{};
        bool const isNamed = isAnswered([&] { return stream->getCurrentEntryName(entry.m_name); });
        if (isAnswered([&] { return stream->getCurrentEntryInfo(info); }) && isNamed)
            mustHold(info.szFileName == entry.m_name, "both operations give one name");
        mustHold(entry.m_name.size() < 259, "a name fits its field");
        entry.m_isOpened = stream->openCurrentEntry();
        readEntry(*stream, entry.m_contents);
        isAnyOpened = isAnyOpened || entry.m_isOpened;
        mustHold(isAnyOpened || entry.m_contents.empty(), "nothing is read before an entry is opened");
        bytes += entry.m_contents.size();
        entries.push_back(entry);
    }
    if (!entries.empty())
        isAnswered([&] { return stream->locate(entries.back().m_name.c_str()); });
    return entries;
}
// Memory ends one byte early for minizip's search, so that only a FILE* shows a signature in the last four
// bytes; minizip then takes it for the record at the archive's end and finds nothing after it.
bool endsInsideRecord(std::vector<char> const& bytes)
{
    std::string const last(bytes.end() - std::min<std::ptrdiff_t>(4, bytes.end() - bytes.begin()),
                           bytes.end());
    return last == "PK\5\6" || last == "PK\6\7";
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    // A copy of exactly that size, so that a read beyond it is seen.
    std::vector<char> bytes(data, data + size);
    std::vector<Entry> const fromMemory = walk(bytes.data(), bytes.size());
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(fmemopen(bytes.data(), size, "rb"),
                                                               std::fclose);
    std::vector<Entry> const fromFile = file ? walk(file.get()) : std::vector<Entry>();
    if (endsInsideRecord(bytes))
        return 0;
    mustHold(fromFile.size() >= fromMemory.size(), "a FILE* shows all entries of memory");
    for (std::size_t i = 0; i < fromMemory.size(); ++i)
    {
        mustHold(fromFile[i].m_name == fromMemory[i].m_name, "both sources show one name");
        mustHold(!fromMemory[i].m_isOpened || fromFile[i].m_contents == fromMemory[i].m_contents,
                 "both sources show one contents");
    }
    return 0;
}
