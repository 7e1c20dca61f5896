// The UTF-16 buffer as a value: made from a terminated text, copied, appended to, compared.

#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/BenchInput.h"
#include "text/ARNEBI18NBuffer.h"

#ifdef ARXIUM_BENCH_ICU
#include <unicode/unistr.h>
#endif

namespace
{
std::u16string unitsOf(std::int64_t size, unsigned seed)
{
    return toUtf16(makeText(asciiText, static_cast<std::size_t>(size), seed));
}

template <class Text>
Text make(char16_t const* units)
{
    return Text(units);
}

template <>
ARNEBI18NBuffer make(char16_t const* units)
{
    return ARNEBI18NBuffer(reinterpret_cast<unsigned short const*>(units));
}

template <class Text>
void construct(benchmark::State& state)
{
    std::u16string const units = unitsOf(state.range(0), 7);
    char16_t const* source = units.c_str();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(source);
        Text text = make<Text>(source);
        benchmark::DoNotOptimize(text);
    }
}

template <class Text>
void copy(benchmark::State& state)
{
    Text source = make<Text>(unitsOf(state.range(0), 7).c_str());
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(source);
        Text text(source);
        benchmark::DoNotOptimize(text);
    }
}

// A third is appended to a fresh copy of two thirds.
template <class Text>
void append(benchmark::State& state)
{
    std::int64_t const third = state.range(0) / 3;
    Text front = make<Text>(unitsOf(state.range(0) - third, 7).c_str());
    Text const back = make<Text>(unitsOf(third, 8).c_str());
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(front);
        Text text(front);
        text += back;
        benchmark::DoNotOptimize(text);
    }
}

template <class Text>
void compare(benchmark::State& state)
{
    Text first = make<Text>(unitsOf(state.range(0), 7).c_str());
    Text second(make<Text>(unitsOf(state.range(0), 7).c_str()));
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(first);
        benchmark::DoNotOptimize(second);
        benchmark::DoNotOptimize(first == second);
    }
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("units")->Arg(12)->Arg(1000);
}

BENCHMARK_TEMPLATE(construct, ARNEBI18NBuffer)->Name("BufferConstruct/ours")->Apply(sizes);
BENCHMARK_TEMPLATE(copy, ARNEBI18NBuffer)->Name("BufferCopy/ours")->Apply(sizes);
BENCHMARK_TEMPLATE(append, ARNEBI18NBuffer)->Name("BufferAppend/ours")->Apply(sizes);
BENCHMARK_TEMPLATE(compare, ARNEBI18NBuffer)->Name("BufferCompare/ours")->Apply(sizes);
BENCHMARK_TEMPLATE(construct, std::u16string)->Name("BufferConstruct/peer-std")->Apply(sizes);
BENCHMARK_TEMPLATE(copy, std::u16string)->Name("BufferCopy/peer-std")->Apply(sizes);
BENCHMARK_TEMPLATE(append, std::u16string)->Name("BufferAppend/peer-std")->Apply(sizes);
BENCHMARK_TEMPLATE(compare, std::u16string)->Name("BufferCompare/peer-std")->Apply(sizes);
#ifdef ARXIUM_BENCH_ICU
BENCHMARK_TEMPLATE(construct, icu::UnicodeString)->Name("BufferConstruct/peer-icu")->Apply(sizes);
BENCHMARK_TEMPLATE(copy, icu::UnicodeString)->Name("BufferCopy/peer-icu")->Apply(sizes);
BENCHMARK_TEMPLATE(append, icu::UnicodeString)->Name("BufferAppend/peer-icu")->Apply(sizes);
BENCHMARK_TEMPLATE(compare, icu::UnicodeString)->Name("BufferCompare/peer-icu")->Apply(sizes);
#endif
}  // namespace
