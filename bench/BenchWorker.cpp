// Does one piece of work and prints the processor time it took, in seconds.
//
//     arxium_bench_worker zip-ours|zip-raw|zip-poco|unzip-ours|unzip-raw|unzip-poco ARCHIVE FOLDER
//     arxium_bench_worker growth-bytes|growth-entries         lists the works
//     arxium_bench_worker growth-bytes|growth-entries WORK N  and prints the memory it took at most, in KiB

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

#include <time.h>

#include "bench/GrowthWork.h"
#include "bench/RawZip.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"

#ifdef ARXIUM_BENCH_POCO
#include <Poco/Path.h>
#include <Poco/Zip/Compress.h>
#include <Poco/Zip/Decompress.h>
#endif

namespace
{
using Work = std::function<void(std::string const& archive, std::string const& folder)>;

void zipOurs(std::string const& archive, std::string const& folder)
{
    ARXZipFile zip;
    zip.create(archive.c_str());
    zip.addDirectory(folder.c_str(), folder.c_str(), true, false);
    zip.close();
}

void unzipOurs(std::string const& archive, std::string const& folder)
{
    if (!ARXUnzipFile::unzip(archive.c_str(), folder.c_str(), false))
        throw std::runtime_error("not unzipped");
}

#ifdef ARXIUM_BENCH_POCO
void zipPoco(std::string const& archive, std::string const& folder)
{
    std::ofstream output(archive, std::ios::binary);
    Poco::Zip::Compress zip(output, true);
    zip.addRecursive(Poco::Path::forDirectory(folder), Poco::Zip::ZipCommon::CM_DEFLATE,
                     Poco::Zip::ZipCommon::CL_NORMAL, true);
    zip.close();
}

void unzipPoco(std::string const& archive, std::string const& folder)
{
    std::ifstream input(archive, std::ios::binary);
    Poco::Zip::Decompress(input, Poco::Path::forDirectory(folder)).decompressAllFiles();
}
#endif

std::map<std::string, Work> const s_works = {
#ifdef ARXIUM_BENCH_POCO
    {"zip-poco", zipPoco}, {"unzip-poco", unzipPoco},
#endif
    {"zip-ours", zipOurs}, {"zip-raw", packRaw},      {"unzip-ours", unzipOurs}, {"unzip-raw", unpackRaw},
};

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

void showGrowth(std::map<std::string, GrowthWork> const& works, std::string const& name, std::size_t size)
{
    auto const work = works.at(name)(size);
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak starts at what is in use now
    long const before = memoryKiB("VmRSS");
    double const start = processorSeconds();
    work();
    double const seconds = processorSeconds() - start;
    std::printf("%.9f %ld\n", seconds, memoryKiB("VmHWM") - before);
}

void run(int argc, char** argv)
{
    std::string const what = argc > 1 ? argv[1] : "";
    auto const work = s_works.find(what);
    if (work != s_works.end() && argc == 4)
    {
        double const start = processorSeconds();
        work->second(argv[2], argv[3]);
        std::printf("%.9f\n", processorSeconds() - start);
        return;
    }
    if (what != "growth-bytes" && what != "growth-entries")
        throw std::runtime_error("what work?");
    auto const& works = what == "growth-bytes" ? worksByBytes() : worksByEntries();
    if (argc == 4)
        return showGrowth(works, argv[2], std::stoull(argv[3]));
    for (auto const& entry : works)
        std::puts(entry.first.c_str());
}
}  // namespace

int main(int argc, char** argv)
{
    try
    {
        run(argc, argv);
        return 0;
    }
    catch (std::exception const& failure)
    {
        std::fprintf(stderr, "arxium_bench_worker: %s\n", failure.what());
        return 1;
    }
}
