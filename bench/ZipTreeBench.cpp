// Packing and unpacking a tree of files, in a process of its own each time: how the heap stands decides half
// of what small files cost. Everything lies in memory (/dev/shm), so that no disk is measured.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/BenchInput.h"
#include "bench/BenchProcess.h"

namespace
{
enum TreeKind
{
    smallTree,
    fullTree
};

struct Tree
{
    explicit Tree(TreeKind kind)
        : m_folder(scratchFolder() + "/tree" + std::to_string(kind)),
          m_archive(m_folder + ".zip"),
          m_target(m_folder + "-out")
    {
        makeTree(m_folder, kind == smallTree);
        runProcess({workerPath(), "zip-raw", m_archive, m_folder});
    }

    std::string const m_folder;
    std::string const m_archive;  // for unpacking
    std::string const m_target;   // of either direction
};

Tree const& treeOf(benchmark::State const& state)
{
    static Tree const s_small(smallTree);
    if (state.range(0) == smallTree)
        return s_small;
    static Tree const s_full(fullTree);
    return s_full;
}

using Command = std::vector<std::string>;

void zip(benchmark::State& state, Command (*makeCommand)(Tree const&))
{
    Tree const& tree = treeOf(state);
    runTimed(state, makeCommand(tree), [&] { std::filesystem::remove_all(tree.m_target); });
}

void unzip(benchmark::State& state, Command (*makeCommand)(Tree const&))
{
    Tree const& tree = treeOf(state);
    runTimed(state, makeCommand(tree),
             [&]
             {
                 std::filesystem::remove_all(tree.m_target);
                 std::filesystem::create_directory(tree.m_target);
             });
    std::filesystem::remove_all(tree.m_target);
}

Command inFolder(std::string const& folder, std::string const& command)
{
    return {"sh", "-c", "cd '" + folder + "' && exec " + command};
}

Command zipOurs(Tree const& tree)
{
    return {workerPath(), "zip-ours", tree.m_target, tree.m_folder};
}
Command zipRaw(Tree const& tree)
{
    return {workerPath(), "zip-raw", tree.m_target, tree.m_folder};
}
Command zipBsdtar(Tree const& tree)
{
    return {"bsdtar", "--format",    "zip", "--options",   "zip:compression-level=6",
            "-cf",    tree.m_target, "-C",  tree.m_folder, "."};
}
Command zipInfoZip(Tree const& tree)
{
    return inFolder(tree.m_folder, "zip -6 -q -r '" + tree.m_target + ".zip' .");
}
Command unzipOurs(Tree const& tree)
{
    return {workerPath(), "unzip-ours", tree.m_archive, tree.m_target};
}
Command unzipRaw(Tree const& tree)
{
    return {workerPath(), "unzip-raw", tree.m_archive, tree.m_target};
}
Command unzipBsdtar(Tree const& tree)
{
    return {"bsdtar", "-xf", tree.m_archive, "-C", tree.m_target};
}
Command unzipInfoZip(Tree const& tree)
{
    return {"unzip", "-q", "-o", tree.m_archive, "-d", tree.m_target};
}
#ifdef ARXIUM_BENCH_POCO
Command zipPoco(Tree const& tree)
{
    return {workerPath(), "zip-poco", tree.m_target, tree.m_folder};
}
Command unzipPoco(Tree const& tree)
{
    return {workerPath(), "unzip-poco", tree.m_archive, tree.m_target};
}
#endif

void trees(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("tree")->Arg(smallTree)->Arg(fullTree)->Iterations(1)->UseManualTime()->Unit(
        benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(zip, ours, zipOurs)->Name("ZipTree/ours")->Apply(trees);
BENCHMARK_CAPTURE(zip, raw, zipRaw)->Name("ZipTree/limit-zlib")->Apply(trees);
BENCHMARK_CAPTURE(zip, bsdtar, zipBsdtar)->Name("ZipTree/peer-bsdtar")->Apply(trees);
BENCHMARK_CAPTURE(zip, zip, zipInfoZip)->Name("ZipTree/peer-zip")->Apply(trees);
BENCHMARK_CAPTURE(unzip, ours, unzipOurs)->Name("UnzipTree/ours")->Apply(trees);
BENCHMARK_CAPTURE(unzip, raw, unzipRaw)->Name("UnzipTree/limit-zlib")->Apply(trees);
BENCHMARK_CAPTURE(unzip, bsdtar, unzipBsdtar)->Name("UnzipTree/peer-bsdtar")->Apply(trees);
BENCHMARK_CAPTURE(unzip, unzip, unzipInfoZip)->Name("UnzipTree/peer-unzip")->Apply(trees);
#ifdef ARXIUM_BENCH_POCO
BENCHMARK_CAPTURE(zip, poco, zipPoco)->Name("ZipTree/peer-poco")->Apply(trees);
BENCHMARK_CAPTURE(unzip, poco, unzipPoco)->Name("UnzipTree/peer-poco")->Apply(trees);
#endif
}  // namespace
