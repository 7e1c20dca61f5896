#include "bench/BenchProcess.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

namespace
{
double childrenSeconds()
{
    rusage usage;
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

std::string quoted(std::string const& word)
{
    std::string text = "'";
    for (char const c : word)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

bool isInstalled(std::string const& program)
{
    return std::system(("command -v " + quoted(program) + " >/dev/null 2>&1").c_str()) == 0;
}
}  // namespace

double runProcess(std::vector<std::string> const& words)
{
    std::string command = "exec";
    for (std::string const& word : words)
        command += ' ' + quoted(word);

    double const before = childrenSeconds();
    FILE* const output = ::popen(command.c_str(), "r");
    if (!output)
        throw std::runtime_error("can't start " + words.front());
    double seconds = 0;
    bool const isPrinted = std::fscanf(output, "%lf", &seconds) == 1;
    if (::pclose(output) != 0)
        throw std::runtime_error(command + " failed");
    return isPrinted ? seconds : childrenSeconds() - before;
}

void runTimed(benchmark::State& state, std::vector<std::string> const& words,
              std::function<void()> const& prepare)
{
    if (!isInstalled(words.front()))
    {
        state.SkipWithError("not installed");
        return;
    }
    for (auto _ : state)
    {
        prepare();
        state.SetIterationTime(runProcess(words));
    }
    prepare();
}

std::string workerPath()
{
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "arxium_bench_worker").string();
}
