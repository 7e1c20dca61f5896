// Percent encoding of UTF-16 text. The peers take the same text as UTF-8.

#include <array>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include "NEBCore/NEBByteBuffer.h"
#include "bench/BenchInput.h"
#include "url/ARXHelper.h"

#ifdef ARXIUM_BENCH_POCO
#include <Poco/URI.h>
#endif
#ifdef ARXIUM_BENCH_CURL
#include <curl/curl.h>
#endif

namespace
{
std::string inputOf(benchmark::State const& state)
{
    return makeText(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
}

void countUnits(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * state.range(1));
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
    countUnits(state);
}

struct Form
{
    char m_text[3];
    unsigned char m_size;
};

std::array<Form, 256> makeForms()
{
    std::array<Form, 256> forms;
    for (unsigned byte = 0; byte < forms.size(); ++byte)
    {
        bool const isPassed =
            byte != 0 && byte < 0x80 &&
            (std::isalnum(static_cast<int>(byte)) != 0 || std::strchr("()*-._", static_cast<int>(byte)));
        char text[4];
        std::snprintf(text, sizeof text, "%%%02x", byte);
        forms[byte] = isPassed ? Form{{static_cast<char>(byte)}, 1} : Form{{text[0], text[1], text[2]}, 3};
    }
    forms[' '] = {{'+'}, 1};
    return forms;
}

// A table and a loop over units, into memory that is large enough: no checks, no growth.
char* encodeByTable(std::u16string const& input, char* target, std::array<Form, 256> const& forms)
{
    auto const put = [&](unsigned byte)
    {
        std::memcpy(target, &forms[byte], sizeof(Form));
        target += forms[byte].m_size;
    };
    for (unsigned const unit : input)
    {
        if (unit < 0x80)
        {
            put(unit);
            continue;
        }
        if (unit < 0x800)
            put(0xC0 | unit >> 6);
        else
        {
            put(0xE0 | unit >> 12);
            put(0x80 | (unit >> 6 & 0x3F));
        }
        put(0x80 | (unit & 0x3F));
    }
    return target;
}

void limitTable(benchmark::State& state)
{
    std::u16string const input = toUtf16(inputOf(state));
    std::array<Form, 256> const forms = makeForms();
    std::vector<char> output(9 * input.size() + 4);
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(encodeByTable(input, output.data(), forms));
        benchmark::ClobberMemory();
    }
    countUnits(state);
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
    countUnits(state);
}
#endif

#ifdef ARXIUM_BENCH_CURL
void curl(benchmark::State& state)
{
    std::string const input = inputOf(state);
    for (auto _ : state)
    {
        char* const text = curl_easy_escape(nullptr, input.data(), static_cast<int>(input.size()));
        benchmark::DoNotOptimize(text);
        curl_free(text);
    }
    countUnits(state);
}
#endif

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"kind", "size"})
        ->Args({fileName, 39})
        ->ArgsProduct({{asciiText, mixedText}, {64, 1 << 20}});
}

BENCHMARK(ours)->Name("PercentEncoding/ours")->Apply(sizes);
BENCHMARK(limitTable)->Name("PercentEncoding/limit-table")->Apply(sizes);
#ifdef ARXIUM_BENCH_POCO
BENCHMARK(poco)->Name("PercentEncoding/peer-poco")->Apply(sizes);
#endif
#ifdef ARXIUM_BENCH_CURL
BENCHMARK(curl)->Name("PercentEncoding/peer-curl")->Apply(sizes);
#endif
}  // namespace
