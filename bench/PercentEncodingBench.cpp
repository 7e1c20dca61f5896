// Percent encoding of UTF-16 text. The peer takes the same text as UTF-8.

#include <string>

#include <benchmark/benchmark.h>

#include "NEBCore/NEBByteBuffer.h"
#include "bench/BenchInput.h"
#include "url/ARXHelper.h"

#ifdef ARXIUM_BENCH_POCO
#include <Poco/URI.h>
#endif

namespace
{
std::string inputOf(benchmark::State const& state)
{
    return makeText(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
}

void ours(benchmark::State& state)
{
    std::u16string const input = toUtf16(inputOf(state));
    NEBByteBuffer output(256, 256);
    for (auto _ : state)
    {
        ARXHelper::urlEncode(input.data(), 2 * input.size(), output, false);
        benchmark::DoNotOptimize(output.str());
    }
}

#ifdef ARXIUM_BENCH_POCO
void poco(benchmark::State& state)
{
    std::string const input = inputOf(state);
    std::string output;
    for (auto _ : state)
    {
        output.clear();
        Poco::URI::encode(input, "!~'+&=/?#", output);
        benchmark::DoNotOptimize(output.data());
    }
}
#endif

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"kind", "size"})
        ->Args({fileName, 39})
        ->ArgsProduct({{asciiText, mixedText}, {1 << 20}});
}

BENCHMARK(ours)->Name("PercentEncoding/ours")->Apply(sizes);
#ifdef ARXIUM_BENCH_POCO
BENCHMARK(poco)->Name("PercentEncoding/peer-poco")->Apply(sizes);
#endif
}  // namespace
