// CRC-32 of bytes, and of UTF-16 text folded to lower case byte by byte.

#include <cctype>
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include <libdeflate.h>
#include <zlib.h>

#include "NEBCore/NEBUtCrc32.h"
#include "bench/BenchInput.h"
#include "text/ARNEBI18NBuffer.h"

#ifdef ARXIUM_BENCH_POCO
#include <Poco/Checksum.h>
#endif

namespace
{
template <class Checksum>
void checksum(benchmark::State& state, Checksum const& checksumOf)
{
    std::string const input = makeText(binaryText, static_cast<std::size_t>(state.range(0)));
    if (checksumOf(input) !=
        crc32(0, reinterpret_cast<unsigned char const*>(input.data()), static_cast<uInt>(input.size())))
        state.SkipWithError("wrong checksum");
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(input.data());
        benchmark::DoNotOptimize(checksumOf(input));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

std::uint32_t ours(std::string const& input)
{
    return NEBUtCrc32::crc32(0, input.data(), input.size());
}

std::uint32_t zlib(std::string const& input)
{
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<unsigned char const*>(input.data()), static_cast<uInt>(input.size())));
}

std::uint32_t libdeflate(std::string const& input)
{
    return libdeflate_crc32(0, input.data(), input.size());
}

struct Table
{
    Table()
    {
        for (std::uint32_t byte = 0; byte < 256; ++byte)
        {
            m_remainders[byte] = byte;
            for (int bit = 0; bit < 8; ++bit)
                m_remainders[byte] = m_remainders[byte] >> 1 ^ (m_remainders[byte] & 1) * 0xEDB88320;
        }
    }

    std::uint32_t m_remainders[256];
};
Table const s_table;

std::uint32_t byTable(std::string const& input)
{
    std::uint32_t crc = ~0u;
    for (char const byte : input)
        crc = s_table.m_remainders[(crc ^ static_cast<unsigned char>(byte)) & 0xFF] ^ crc >> 8;
    return ~crc;
}

#ifdef ARXIUM_BENCH_POCO
std::uint32_t poco(std::string const& input)
{
    Poco::Checksum checksum;
    checksum.update(input);
    return checksum.checksum();
}
#endif

std::u16string foldInput(benchmark::State const& state)
{
    std::u16string units = toUtf16(makeText(mixedText, static_cast<std::size_t>(state.range(0))));
    for (std::size_t i = 0; i < units.size(); i += 3)
        if (units[i] >= 'a' && units[i] <= 'z')
            units[i] = static_cast<char16_t>(units[i] - 'a' + 'A');
    return units;
}

// The first byte is written over each time, so that no checksum is remembered.
void foldOurs(benchmark::State& state)
{
    std::u16string const units = foldInput(state);
    auto const* const text = reinterpret_cast<unsigned short const*>(units.c_str());
    ARNEBI18NBuffer buffer(text);
    for (auto _ : state)
    {
        buffer = text;
        benchmark::DoNotOptimize(buffer.getCssCrc());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(buffer.getSize()));
}

// zlib, called for each byte, on the same copy.
void foldZlib(benchmark::State& state)
{
    std::u16string const units = foldInput(state);
    std::size_t const size = 2 * units.size() + 2;
    std::string copy(size, '\0');
    for (auto _ : state)
    {
        std::memcpy(copy.data(), units.c_str(), size);
        uLong crc = 0;
        for (char const byte : copy)
        {
            auto const folded = static_cast<unsigned char>(std::tolower(static_cast<unsigned char>(byte)));
            crc = crc32(crc, &folded, 1);
        }
        benchmark::DoNotOptimize(crc);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("size");
    for (int const size : {1, 8, 16, 32, 64, 160, 1024, 1 << 20})
        benchmark->Arg(size);
}

BENCHMARK_CAPTURE(checksum, ours, ours)->Name("Checksum/ours")->Apply(sizes);
BENCHMARK_CAPTURE(checksum, zlib, zlib)->Name("Checksum/peer-zlib")->Apply(sizes);
BENCHMARK_CAPTURE(checksum, libdeflate, libdeflate)->Name("Checksum/peer-libdeflate")->Apply(sizes);
BENCHMARK_CAPTURE(checksum, table, byTable)->Name("Checksum/peer-table")->Apply(sizes);
#ifdef ARXIUM_BENCH_POCO
BENCHMARK_CAPTURE(checksum, poco, poco)->Name("Checksum/peer-poco")->Apply(sizes);
#endif
BENCHMARK(foldOurs)->Name("FoldedChecksum/ours")->ArgName("units")->Arg(12)->Arg(64)->Arg(4096);
BENCHMARK(foldZlib)->Name("FoldedChecksum/peer-zlib")->ArgName("units")->Arg(12)->Arg(64)->Arg(4096);
}  // namespace
