// Reading every entry of an archive in memory as a stream, and finding its last entry by name.

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <minizip/unzip.h>
#include <zlib.h>

#include "bench/BenchInput.h"
#include "zip/ARXZipInputStream.h"

#ifdef ARXIUM_BENCH_LIBZIP
#include <zip.h>
#endif
#ifdef ARXIUM_BENCH_LIBARCHIVE
#include <archive.h>
#include <archive_entry.h>
#endif
#ifdef ARXIUM_BENCH_POCO
#include <Poco/MemoryStream.h>
#include <Poco/Zip/ZipArchive.h>
#include <Poco/Zip/ZipStream.h>
#endif

namespace
{
struct Archive
{
    Archive(std::size_t count, std::size_t entrySize)
        : m_bytes(makeArchive(count, entrySize)), m_entries(listEntries(m_bytes))
    {
    }

    std::string const m_bytes;
    std::vector<ZipEntry> const m_entries;
};

// One entry of 16 MiB, or 2000 of 4 KiB.
Archive const& archiveOf(std::int64_t entries)
{
    static Archive const s_large(1, 16 << 20);
    static Archive const s_small(2000, 4096);
    return entries == 1 ? s_large : s_small;
}

// Every reader gives how much it has read in all.
template <class ReadAll>
void readArchive(benchmark::State& state, ReadAll const& readAll)
{
    Archive const& archive = archiveOf(state.range(0));
    std::vector<char> piece(static_cast<std::size_t>(state.range(1)));
    std::size_t total = 0;
    for (ZipEntry const& entry : archive.m_entries)
        total += entry.m_size;
    for (auto _ : state)
        if (readAll(archive, piece) != total)
            state.SkipWithError("the archive was not read to its end");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(total));
}

std::size_t readOurs(Archive const& archive, std::vector<char>& piece)
{
    ARXZipInputStream stream(archive.m_bytes.data(), archive.m_bytes.size());
    std::size_t total = 0;
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
    {
        ARXZipInputStream::zipEntry entry;
        stream.getCurrentEntryInfo(entry);
        stream.openCurrentEntry();
        for (std::size_t count; (count = stream.read(piece.data(), piece.size())) != SIZE_MAX;)
            total += count;
    }
    return total;
}

std::size_t readRaw(Archive const& archive, std::vector<char>& piece)
{
    z_stream stream{};
    inflateInit2(&stream, -15);
    std::size_t total = 0;
    for (ZipEntry const& entry : archive.m_entries)
    {
        inflateReset(&stream);
        stream.next_in =
            reinterpret_cast<unsigned char*>(const_cast<char*>(archive.m_bytes.data() + entry.m_offset));
        stream.avail_in = static_cast<uInt>(entry.m_packedSize);
        uLong crc = 0;
        int result = Z_OK;
        while (result == Z_OK)
        {
            stream.next_out = reinterpret_cast<unsigned char*>(piece.data());
            stream.avail_out = static_cast<uInt>(piece.size());
            result = inflate(&stream, Z_SYNC_FLUSH);
            uInt const count = static_cast<uInt>(piece.size()) - stream.avail_out;
            crc = crc32(crc, reinterpret_cast<unsigned char const*>(piece.data()), count);
            total += count;
        }
        benchmark::DoNotOptimize(crc);
    }
    inflateEnd(&stream);
    return total;
}

// minizip with the plainest table of I/O functions.
struct Cursor
{
    std::string const& m_bytes;
    std::size_t m_at;
};

voidpf openCursor(voidpf opaque, char const*, int)
{
    static_cast<Cursor*>(opaque)->m_at = 0;
    return opaque;
}

uLong readCursor(voidpf, voidpf stream, void* target, uLong size)
{
    auto* const cursor = static_cast<Cursor*>(stream);
    std::size_t const count = cursor->m_bytes.copy(static_cast<char*>(target), size, cursor->m_at);
    cursor->m_at += count;
    return count;
}

long tellCursor(voidpf, voidpf stream)
{
    return static_cast<long>(static_cast<Cursor*>(stream)->m_at);
}

long seekCursor(voidpf, voidpf stream, uLong offset, int origin)
{
    auto* const cursor = static_cast<Cursor*>(stream);
    std::size_t const bases[] = {0, cursor->m_at, cursor->m_bytes.size()};
    if (bases[origin] + offset > cursor->m_bytes.size())
        return -1;
    cursor->m_at = bases[origin] + offset;
    return 0;
}

int ignore(voidpf, voidpf)
{
    return 0;
}

class Minizip
{
public:
    explicit Minizip(std::string const& bytes) : m_cursor{bytes, 0}
    {
        zlib_filefunc_def functions = {openCursor, readCursor, nullptr, tellCursor,
                                       seekCursor, ignore,     ignore,  &m_cursor};
        open(functions);
    }
    explicit Minizip(std::FILE* file) : m_cursor{m_none, 0}
    {
        zlib_filefunc_def functions;
        fill_fopen_filefunc(&functions);
        functions.opaque = file;
        functions.zopen_file = [](voidpf opaque, char const*, int) { return opaque; };
        functions.zclose_file = ignore;
        open(functions);
    }
    ~Minizip() { unzClose(m_file); }
    Minizip(Minizip const&) = delete;
    Minizip& operator=(Minizip const&) = delete;

    // What the wanted behaviour asks of minizip, and no more: the name of each entry up to the wanted one.
    bool walkTo(std::string const& wanted)
    {
        char name[259];
        unz_file_info info;
        int result = unzGoToFirstFile(m_file);
        for (; result == UNZ_OK; result = unzGoToNextFile(m_file))
        {
            unzGetCurrentFileInfo(m_file, &info, name, sizeof name, nullptr, 0, nullptr, 0);
            if (wanted == name)
                return true;
        }
        return false;
    }

    unzFile m_file;

private:
    void open(zlib_filefunc_def& functions)
    {
        m_file = unzOpen2(nullptr, &functions);
        if (!m_file)
            throw std::runtime_error("minizip can't open the archive");
    }

    std::string const m_none;
    Cursor m_cursor;
};

std::size_t readMinizip(Archive const& archive, std::vector<char>& piece)
{
    Minizip const zip(archive.m_bytes);
    std::size_t total = 0;
    for (int result = unzGoToFirstFile(zip.m_file); result == UNZ_OK; result = unzGoToNextFile(zip.m_file))
    {
        char name[260];
        unz_file_info info;
        unzGetCurrentFileInfo(zip.m_file, &info, name, sizeof name, nullptr, 0, nullptr, 0);
        unzOpenCurrentFile(zip.m_file);
        for (int count;
             (count = unzReadCurrentFile(zip.m_file, piece.data(), static_cast<unsigned>(piece.size()))) > 0;)
            total += static_cast<std::size_t>(count);
        unzCloseCurrentFile(zip.m_file);
    }
    return total;
}

#ifdef ARXIUM_BENCH_LIBZIP
zip_t* openLibzip(std::string const& bytes)
{
    zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
    return zip_open_from_source(source, ZIP_RDONLY, nullptr);
}

std::size_t readLibzip(Archive const& archive, std::vector<char>& piece)
{
    zip_t* const zip = openLibzip(archive.m_bytes);
    std::size_t total = 0;
    for (zip_int64_t i = 0; i < zip_get_num_entries(zip, 0); ++i)
    {
        zip_file_t* const file = zip_fopen_index(zip, static_cast<zip_uint64_t>(i), 0);
        for (zip_int64_t count; (count = zip_fread(file, piece.data(), piece.size())) > 0;)
            total += static_cast<std::size_t>(count);
        zip_fclose(file);
    }
    zip_discard(zip);
    return total;
}
#endif

#ifdef ARXIUM_BENCH_LIBARCHIVE
std::size_t readLibarchive(Archive const& archive, std::vector<char>& piece)
{
    struct archive* const reader = archive_read_new();
    archive_read_support_format_zip(reader);
    archive_read_open_memory(reader, archive.m_bytes.data(), archive.m_bytes.size());
    std::size_t total = 0;
    archive_entry* entry;
    while (archive_read_next_header(reader, &entry) == ARCHIVE_OK)
        for (la_ssize_t count; (count = archive_read_data(reader, piece.data(), piece.size())) > 0;)
            total += static_cast<std::size_t>(count);
    archive_read_free(reader);
    return total;
}
#endif

#ifdef ARXIUM_BENCH_POCO
std::size_t readPoco(Archive const& archive, std::vector<char>& piece)
{
    Poco::MemoryInputStream input(archive.m_bytes.data(),
                                  static_cast<std::streamsize>(archive.m_bytes.size()));
    Poco::Zip::ZipArchive zip(input);
    std::size_t total = 0;
    for (auto header = zip.headerBegin(); header != zip.headerEnd(); ++header)
    {
        input.clear();
        Poco::Zip::ZipInputStream stream(input, header->second);
        while (stream.read(piece.data(), static_cast<std::streamsize>(piece.size())), stream.gcount() > 0)
            total += static_cast<std::size_t>(stream.gcount());
    }
    return total;
}
#endif

// Finding the last of 2000 in an archive that is open already.
enum Source
{
    inMemory,
    inFile
};

std::FILE* archiveFile()
{
    std::FILE* const file = std::tmpfile();
    std::string const& bytes = archiveOf(2000).m_bytes;
    if (!file || std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size())
        throw std::runtime_error("no temporary file");
    return file;
}

template <class Opened>
void locateIn(benchmark::State& state, Opened const& locate)
{
    std::string const wanted = archiveOf(2000).m_entries.back().m_name;
    for (auto _ : state)
        if (!locate(wanted))
            state.SkipWithError("not found");
}

void locateOurs(benchmark::State& state)
{
    std::string const& bytes = archiveOf(2000).m_bytes;
    std::unique_ptr<std::FILE, decltype(&std::fclose)> const file(archiveFile(), std::fclose);
    auto const stream = state.range(0) == inMemory
                            ? std::make_unique<ARXZipInputStream>(bytes.data(), bytes.size())
                            : std::make_unique<ARXZipInputStream>(file.get());
    locateIn(state, [&](std::string const& name) { return stream->locate(name.c_str()); });
}

void locateMinizip(benchmark::State& state)
{
    std::unique_ptr<std::FILE, decltype(&std::fclose)> const file(archiveFile(), std::fclose);
    auto const zip = state.range(0) == inMemory ? std::make_unique<Minizip>(archiveOf(2000).m_bytes)
                                                : std::make_unique<Minizip>(file.get());
    locateIn(state, [&](std::string const& name) { return zip->walkTo(name); });
}

void readings(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"entries", "piece"})
        ->ArgsProduct({{1, 2000}, {2048, 64 << 10}})
        ->Unit(benchmark::kMillisecond);
}

void sources(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("source")->Arg(inMemory)->Arg(inFile)->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(readArchive, ours, readOurs)->Name("ZipStream/ours")->Apply(readings);
BENCHMARK_CAPTURE(readArchive, raw, readRaw)->Name("ZipStream/limit-inflate")->Apply(readings);
BENCHMARK_CAPTURE(readArchive, minizip, readMinizip)->Name("ZipStream/limit-minizip")->Apply(readings);
#ifdef ARXIUM_BENCH_LIBZIP
BENCHMARK_CAPTURE(readArchive, libzip, readLibzip)->Name("ZipStream/peer-libzip")->Apply(readings);
#endif
#ifdef ARXIUM_BENCH_LIBARCHIVE
BENCHMARK_CAPTURE(readArchive, libarchive, readLibarchive)
    ->Name("ZipStream/peer-libarchive")
    ->Apply(readings);
#endif
#ifdef ARXIUM_BENCH_POCO
BENCHMARK_CAPTURE(readArchive, poco, readPoco)->Name("ZipStream/peer-poco")->Apply(readings);
#endif
BENCHMARK(locateOurs)->Name("Locate/ours")->Apply(sources);
BENCHMARK(locateMinizip)->Name("Locate/limit-minizip")->Apply(sources);
}  // namespace
