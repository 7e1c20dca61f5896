// Packing and unpacking a tree of files, in a process of its own each time: the state of the heap decides
// half of what small files cost.

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
        runProcess({workerPath(), "zip", m_archive, m_folder});
    }

    std::string const m_folder;
    std::string const m_archive;  // for unpacking
    std::string const m_target;   // in either direction
};

Tree const& treeOf(benchmark::State const& state)
{
    static Tree const s_small(smallTree);
    static Tree const s_full(fullTree);
    return state.range(0) == smallTree ? s_small : s_full;
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
    auto const prepare = [&]
    {
        std::filesystem::remove_all(tree.m_target);
        std::filesystem::create_directory(tree.m_target);
    };
    runTimed(state, makeCommand(tree), prepare);
    std::filesystem::remove_all(tree.m_target);
}

Command zipOurs(Tree const& tree)
{
    return {workerPath(), "zip", tree.m_target, tree.m_folder};
}
Command zipBsdtar(Tree const& tree)
{
    return {"bsdtar", "--format",    "zip", "--options",   "zip:compression-level=6",
            "-cf",    tree.m_target, "-C",  tree.m_folder, "."};
}
Command unzipOurs(Tree const& tree)
{
    return {workerPath(), "unzip", tree.m_archive, tree.m_target};
}
Command unzipBsdtar(Tree const& tree)
{
    return {"bsdtar", "-xf", tree.m_archive, "-C", tree.m_target};
}

void trees(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("tree")->Arg(smallTree)->Arg(fullTree)->Iterations(1)->UseManualTime()->Unit(
        benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(zip, ours, zipOurs)->Name("ZipTree/ours")->Apply(trees);
BENCHMARK_CAPTURE(zip, bsdtar, zipBsdtar)->Name("ZipTree/peer-bsdtar")->Apply(trees);
BENCHMARK_CAPTURE(unzip, ours, unzipOurs)->Name("UnzipTree/ours")->Apply(trees);
BENCHMARK_CAPTURE(unzip, bsdtar, unzipBsdtar)->Name("UnzipTree/peer-bsdtar")->Apply(trees);
}  // namespace
