// Reading every entry of an archive in memory as a stream, and finding its last entry by name.

#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <minizip/unzip.h>

#include "bench/BenchInput.h"
#include "zip/ARXZipInputStream.h"

#ifdef ARXIUM_BENCH_LIBARCHIVE
#include <archive.h>
#include <archive_entry.h>
#endif

namespace
{
std::size_t constexpr s_total = 8 << 20;  // bytes in all entries

std::string const& archiveOf(std::int64_t entries)
{
    static std::string const s_one = makeArchive(1, s_total);
    static std::string const s_many = makeArchive(2048, s_total / 2048);
    return entries == 1 ? s_one : s_many;
}

// readAll returns how much it has read in all.
template <class ReadAll>
void readArchive(benchmark::State& state, ReadAll const& readAll)
{
    std::string const& archive = archiveOf(state.range(0));
    std::vector<char> piece(64 << 10);
    for (auto _ : state)
        if (readAll(archive, piece) != s_total)
            state.SkipWithError("the archive was not read to its end");
}

std::size_t readOurs(std::string const& archive, std::vector<char>& piece)
{
    ARXZipInputStream stream(archive.data(), archive.size());
    std::size_t total = 0;
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
    {
        stream.openCurrentEntry();
        for (std::size_t count; (count = stream.read(piece.data(), piece.size())) != SIZE_MAX;)
            total += count;
    }
    return total;
}

// minizip with the plainest table of I/O functions.
struct Cursor
{
    std::string const& m_bytes;
    std::size_t m_at;
};

long seekCursor(voidpf, voidpf stream, uLong offset, int origin)
{
    auto* const cursor = static_cast<Cursor*>(stream);
    std::size_t const bases[] = {0, cursor->m_at, cursor->m_bytes.size()};
    cursor->m_at = bases[origin] + offset;
    return 0;
}

struct Minizip
{
    explicit Minizip(std::string const& bytes) : m_cursor{bytes, 0}
    {
        zlib_filefunc_def functions = {};
        functions.zopen_file = [](voidpf opaque, char const*, int) { return opaque; };
        functions.zread_file = [](voidpf, voidpf stream, void* target, uLong size) -> uLong
        {
            auto* const cursor = static_cast<Cursor*>(stream);
            std::size_t const count = cursor->m_bytes.copy(static_cast<char*>(target), size, cursor->m_at);
            cursor->m_at += count;
            return count;
        };
        functions.ztell_file = [](voidpf, voidpf stream)
        { return static_cast<long>(static_cast<Cursor*>(stream)->m_at); };
        functions.zseek_file = seekCursor;
        functions.zclose_file = functions.zerror_file = [](voidpf, voidpf) { return 0; };
        functions.opaque = &m_cursor;
        m_file = unzOpen2(nullptr, &functions);
    }
    ~Minizip() { unzClose(m_file); }
    Minizip(Minizip const&) = delete;
    Minizip& operator=(Minizip const&) = delete;

    Cursor m_cursor;
    unzFile m_file;
};

std::size_t readMinizip(std::string const& archive, std::vector<char>& piece)
{
    Minizip const zip(archive);
    std::size_t total = 0;
    for (int result = unzGoToFirstFile(zip.m_file); result == UNZ_OK; result = unzGoToNextFile(zip.m_file))
    {
        unzOpenCurrentFile(zip.m_file);
        for (int count;
             (count = unzReadCurrentFile(zip.m_file, piece.data(), static_cast<unsigned>(piece.size()))) > 0;)
            total += static_cast<std::size_t>(count);
        unzCloseCurrentFile(zip.m_file);
    }
    return total;
}

#ifdef ARXIUM_BENCH_LIBARCHIVE
std::size_t readLibarchive(std::string const& archive, std::vector<char>& piece)
{
    struct archive* const reader = archive_read_new();
    archive_read_support_format_zip(reader);
    archive_read_open_memory(reader, archive.data(), archive.size());
    std::size_t total = 0;
    archive_entry* entry;
    while (archive_read_next_header(reader, &entry) == ARCHIVE_OK)
        for (la_ssize_t count; (count = archive_read_data(reader, piece.data(), piece.size())) > 0;)
            total += static_cast<std::size_t>(count);
    archive_read_free(reader);
    return total;
}
#endif

void locateOurs(benchmark::State& state)
{
    std::string const& archive = archiveOf(2048);
    ARXZipInputStream stream(archive.data(), archive.size());
    std::string const wanted = entryName(2047);
    for (auto _ : state)
        if (!stream.locate(wanted.c_str()))
            state.SkipWithError("not found");
}

// What locating asks of minizip, and no more: the name of each entry up to the wanted one.
bool walkTo(unzFile file, std::string const& wanted)
{
    char name[259];
    unz_file_info info;
    for (int result = unzGoToFirstFile(file); result == UNZ_OK; result = unzGoToNextFile(file))
    {
        unzGetCurrentFileInfo(file, &info, name, sizeof name, nullptr, 0, nullptr, 0);
        if (wanted == name)
            return true;
    }
    return false;
}

void locateMinizip(benchmark::State& state)
{
    Minizip const zip(archiveOf(2048));
    std::string const wanted = entryName(2047);
    for (auto _ : state)
        if (!walkTo(zip.m_file, wanted))
            state.SkipWithError("not found");
}

void readings(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("entries")->Arg(1)->Arg(2048)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(readArchive, ours, readOurs)->Name("ZipStream/ours")->Apply(readings);
BENCHMARK_CAPTURE(readArchive, minizip, readMinizip)->Name("ZipStream/limit-minizip")->Apply(readings);
#ifdef ARXIUM_BENCH_LIBARCHIVE
BENCHMARK_CAPTURE(readArchive, libarchive, readLibarchive)
    ->Name("ZipStream/peer-libarchive")
    ->Apply(readings);
#endif
BENCHMARK(locateOurs)->Name("Locate/ours");
BENCHMARK(locateMinizip)->Name("Locate/limit-minizip");
}  // namespace
