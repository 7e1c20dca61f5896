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

namespace
{
template <class Checksum>
void checksum(benchmark::State& state, Checksum const& checksumOf)
{
    std::string const input = makeText(binaryText, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(input.data());
        benchmark::DoNotOptimize(checksumOf(input));
    }
}

std::uint32_t ours(std::string const& input)
{
    return NEBUtCrc32::crc32(0, input.data(), input.size());
}

std::uint32_t libdeflate(std::string const& input)
{
    return libdeflate_crc32(0, input.data(), input.size());
}

std::u16string foldInput(benchmark::State const& state)
{
    std::u16string units = toUtf16(makeText(mixedText, static_cast<std::size_t>(state.range(0))));
    for (std::size_t i = 0; i < units.size(); i += 3)
        if (units[i] >= 'a' && units[i] <= 'z')
            units[i] = static_cast<char16_t>(units[i] - 'a' + 'A');
    return units;
}

// Assigned each time, so that no checksum is kept.
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
}

// zlib, called for each byte, on the same copy.
void foldZlib(benchmark::State& state)
{
    std::u16string const units = foldInput(state);
    std::string copy(2 * units.size() + 2, '\0');
    for (auto _ : state)
    {
        std::memcpy(copy.data(), units.c_str(), copy.size());
        uLong crc = 0;
        for (char const byte : copy)
        {
            auto const folded = static_cast<unsigned char>(std::tolower(static_cast<unsigned char>(byte)));
            crc = crc32(crc, &folded, 1);
        }
        benchmark::DoNotOptimize(crc);
    }
}

BENCHMARK_CAPTURE(checksum, ours, ours)
    ->Name("Checksum/ours")
    ->ArgName("size")
    ->Arg(8)
    ->Arg(160)
    ->Arg(1 << 20);
BENCHMARK_CAPTURE(checksum, libdeflate, libdeflate)
    ->Name("Checksum/peer-libdeflate")
    ->ArgName("size")
    ->Arg(8)
    ->Arg(160)
    ->Arg(1 << 20);
BENCHMARK(foldOurs)->Name("FoldedChecksum/ours")->ArgName("units")->Arg(12)->Arg(4096);
BENCHMARK(foldZlib)->Name("FoldedChecksum/peer-zlib")->ArgName("units")->Arg(12)->Arg(4096);
}  // namespace
