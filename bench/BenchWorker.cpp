// Does one piece of work and prints the processor time it took, in seconds.
//
//     arxium_bench_worker zip|unzip ARCHIVE FOLDER
//     arxium_bench_worker growth          lists the works, each after "bytes" or "entries"
//     arxium_bench_worker growth WORK N   prints the memory that it took at most as well, in KiB

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <malloc.h>
#include <time.h>

#include "bench/GrowthWork.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"

namespace
{
void zip(std::string const& archive, std::string const& folder)
{
    ARXZipFile file;
    file.create(archive.c_str());
    file.addDirectory(folder.c_str(), folder.c_str(), true, false);
    file.close();
}

void unzip(std::string const& archive, std::string const& folder)
{
    if (!ARXUnzipFile::unzip(archive.c_str(), folder.c_str(), false))
        throw std::runtime_error("not unzipped");
}

double processorSeconds()
{
    timespec time;
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// A line of /proc/self/status, in KiB.
long memoryKiB(std::string const& field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, field.size(), field) == 0)
            return std::atol(line.c_str() + field.size() + 1);
    throw std::runtime_error("no " + field);
}

void showGrowth(std::string const& name, std::size_t size)
{
    auto const work = growthWorks().at(name).m_prepare(size);
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak starts at what is in use now
    long const before = memoryKiB("VmRSS");
    double const start = processorSeconds();
    work();
    double const seconds = processorSeconds() - start;
    std::printf("%.9f %ld\n", seconds, memoryKiB("VmHWM") - before);
}

void run(std::vector<std::string> const& words)
{
    if (words.size() == 1 && words[0] == "growth")
        for (auto const& [name, work] : growthWorks())
            std::printf("%s %s\n", work.m_isByBytes ? "bytes" : "entries", name.c_str());
    else if (words.size() == 3 && words[0] == "growth")
        showGrowth(words[1], std::stoul(words[2]));
    else if (words.size() == 3 && (words[0] == "zip" || words[0] == "unzip"))
    {
        double const start = processorSeconds();
        (words[0] == "zip" ? zip : unzip)(words[1], words[2]);
        std::printf("%.9f\n", processorSeconds() - start);
    }
    else
        throw std::runtime_error("what work?");
}
}  // namespace

int main(int argc, char** argv)
{
    mallopt(M_TRIM_THRESHOLD, 64 << 20);  // as docs/performance.md tells hosts that zip many small files
    try
    {
        run({argv + 1, argv + argc});
        return 0;
    }
    catch (std::exception const& failure)
    {
        std::fprintf(stderr, "arxium_bench_worker: %s\n", failure.what());
        return 1;
    }
}
