// Quoted-printable text of a whole input in one write, to a target that drops it.

#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/BenchInput.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"

#ifdef ARXIUM_BENCH_GMIME
#include <gmime/gmime.h>
#endif

namespace
{
class NullTarget : public OJDOutputStream
{
public:
    void write(char const* data, std::size_t size) override
    {
        benchmark::DoNotOptimize(data);
        m_size += size;
    }

    std::size_t m_size = 0;
};

std::string inputOf(benchmark::State const& state)
{
    return makeText(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
}

void ours(benchmark::State& state)
{
    std::string const input = inputOf(state);
    NullTarget target;
    for (auto _ : state)
        ARXOJDQuotedPrintableOutputStream(target, false).write(input.data(), input.size());
    benchmark::DoNotOptimize(target.m_size);
}

// The least that lines of 76 columns can cost: each copied once and given to the target.
void limitLines(benchmark::State& state)
{
    std::string const input = inputOf(state);
    NullTarget target;
    OJDOutputStream* stream = &target;
    benchmark::DoNotOptimize(stream);
    std::size_t constexpr lineSize = 76;
    char line[lineSize + 2];
    for (auto _ : state)
        for (std::size_t at = 0; at < input.size(); at += lineSize)
        {
            std::size_t const size = std::min(lineSize, input.size() - at);
            std::memcpy(line, input.data() + at, size);
            std::memcpy(line + size, "\r\n", 2);
            stream->write(line, size + 2);
        }
}

#ifdef ARXIUM_BENCH_GMIME
void gmime(benchmark::State& state)
{
    std::string const input = inputOf(state);
    GMimeEncoding encoding;
    g_mime_encoding_init_encode(&encoding, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
    std::vector<char> output(g_mime_encoding_outlen(&encoding, input.size()) + 64);
    for (auto _ : state)
    {
        g_mime_encoding_reset(&encoding);
        benchmark::DoNotOptimize(g_mime_encoding_flush(&encoding, input.data(), input.size(), output.data()));
    }
}
#endif

void smallAndLarge(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"kind", "size"})->ArgsProduct({{asciiText, mixedText, binaryText}, {64, 1 << 20}});
}

BENCHMARK(ours)->Name("QuotedPrintable/ours")->Apply(smallAndLarge);
BENCHMARK(limitLines)->Name("QuotedPrintable/limit-lines")->Apply(smallAndLarge);
#ifdef ARXIUM_BENCH_GMIME
BENCHMARK(gmime)->Name("QuotedPrintable/peer-gmime")->Apply(smallAndLarge);
#endif
}  // namespace
