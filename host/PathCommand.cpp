#include <iostream>
#include <string>
#include <vector>

#include "Commands.h"
#include "Failure.h"
#include "path/ARXFmDir.h"

namespace
{
struct PathOptions
{
    std::vector<std::string> m_paths;
    std::string m_directory;
};

// Makes a result of a path and a directory.
using Operation = std::string (*)(std::string const& path, std::string const& directory);

std::string normalized(std::string const& path, std::string const&)
{
    std::string result;
    ARXFmDir::getNormalizedPath(path, result);
    return result;
}

std::string absolute(std::string const& path, std::string const& directory)
{
    std::string result;
    if (directory.empty())
        ARXFmDir::getAbsolutePath(path.c_str(), result);
    else
        ARXFmDir::getAbsolutePath(directory.c_str(), path.c_str(), result);
    return result;
}

std::string tail(std::string const& path, std::string const& directory)
{
    std::string result;
    ARXFmDir::getPathTail(result, directory.c_str(), path.c_str());
    return result;
}

template <Operation operation>
int printEach(PathOptions const& options)
{
    for (std::string const& path : options.m_paths)
        std::cout << naming(path, [&] { return operation(path, options.m_directory); }) << '\n';
    return 0;
}

int compare(PathOptions const& options)
{
    char const* const first = options.m_paths[0].c_str();
    char const* const second = options.m_paths[1].c_str();
    bool const equivalent = ARXFmDir::isEquivalentPath(first, second);
    if (equivalent)
        std::cout << "equivalent\n";
    else
        std::cout << "different from offset " << ARXFmDir::findDifferentiatingPathOffset(first, second)
                  << " on\n";
    return equivalent ? 0 : 1;
}
}  // namespace

void addPathCommand(CLI::App& app, Action& chosen)
{
    CLI::App& group = *app.add_subcommand("path", "Work on paths as text, one result a line");
    group.require_subcommand(1);
    auto const add = [&](char const* name, char const* description, int (*run)(PathOptions const&))
    {
        auto const added = addCommand(group, chosen, name, description, run);
        added.first->add_option("PATH", added.second->m_paths, "A path")->required();
        return added;
    };

    add("normalize", "Print the canonical form", printEach<normalized>);
    auto const [absoluteCommand, absoluteOptions] =
        add("absolute", "Put relative paths under a directory", printEach<absolute>);
    absoluteCommand->add_option("--pwd", absoluteOptions->m_directory,
                                "The directory; the current one if not given");
    auto const [tailCommand, tailOptions] = add("tail", "Cut a directory off the front", printEach<tail>);
    tailCommand->add_option("--base", tailOptions->m_directory,
                            "The directory; without it the last element stays");
    add("compare", "Compare two paths; exit code 1 if they differ", compare)
        .first->get_option("PATH")
        ->expected(2)
        ->allow_extra_args(false);  // or "[a,b]" would be two paths
}
