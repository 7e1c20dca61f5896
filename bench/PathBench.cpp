// Normalisation of five usual paths.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "path/ARXFmDir.h"

#ifdef ARXIUM_BENCH_POCO
#include <Poco/Path.h>
#endif

namespace
{
char const* const s_paths[] = {
    "/srv/app/data/reports/2007/quarterly/summary.pdf",
    "/srv/app//data/./reports/tmp/../2007/summary.pdf",
    "templates/html/../common/header.xml",
    "C:\\Program Files\\Product\\bin\\..\\templates\\ps\\portal\\images\\icon.gif",
    "a/b",
};

template <class Normalise>
void normalise(benchmark::State& state, Normalise const& normalisePath)
{
    std::string const path = s_paths[state.range(0)];
    std::string result;
    for (auto _ : state)
    {
        normalisePath(path, result);
        benchmark::DoNotOptimize(result.data());
    }
}

void ours(std::string const& path, std::string& result)
{
    ARXFmDir::getNormalizedPath(path, result);
}

void standard(std::string const& path, std::string& result)
{
    result = std::filesystem::path(path).lexically_normal().string();
}

#ifdef ARXIUM_BENCH_POCO
int constexpr s_drivePath = 3;

void poco(std::string const& path, std::string& result)
{
    auto const style = path == s_paths[s_drivePath] ? Poco::Path::PATH_WINDOWS : Poco::Path::PATH_UNIX;
    result = Poco::Path(path, style).toString(Poco::Path::PATH_UNIX);
}
#endif

BENCHMARK_CAPTURE(normalise, ours, ours)->Name("NormalizedPath/ours")->ArgName("path")->DenseRange(0, 4);
BENCHMARK_CAPTURE(normalise, std, standard)
    ->Name("NormalizedPath/peer-std")
    ->ArgName("path")
    ->DenseRange(0, 4);
#ifdef ARXIUM_BENCH_POCO
BENCHMARK_CAPTURE(normalise, poco, poco)->Name("NormalizedPath/peer-poco")->ArgName("path")->DenseRange(0, 4);
#endif
}  // namespace
