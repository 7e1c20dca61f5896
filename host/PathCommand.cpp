#include <iostream>
#include <memory>

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

int normalize(PathOptions const& options)
{
    for (std::string const& path : options.m_paths)
    {
        std::string normalized;
        naming(path, [&] { ARXFmDir::getNormalizedPath(path, normalized); });
        std::cout << normalized << '\n';
    }
    return 0;
}

int makeAbsolute(PathOptions const& options)
{
    for (std::string const& path : options.m_paths)
    {
        std::string absolute;
        naming(path,
               [&]
               {
                   if (options.m_directory.empty())
                       ARXFmDir::getAbsolutePath(path.c_str(), absolute);
                   else
                       ARXFmDir::getAbsolutePath(options.m_directory.c_str(), path.c_str(), absolute);
               });
        std::cout << absolute << '\n';
    }
    return 0;
}

int cutTail(PathOptions const& options)
{
    for (std::string const& path : options.m_paths)
    {
        std::string tail;
        ARXFmDir::getPathTail(tail, options.m_directory.c_str(), path.c_str());
        std::cout << tail << '\n';
    }
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

CLI::App* addOperation(CLI::App& group, Action& chosen, std::shared_ptr<PathOptions> const& options,
                       char const* name, char const* description, int (*operation)(PathOptions const&))
{
    CLI::App* command = group.add_subcommand(name, description);
    command->add_option("PATH", options->m_paths, "A path")->required();
    command->callback([&chosen, options, operation] { chosen = [=] { return operation(*options); }; });
    return command;
}
}  // namespace

void addPathCommand(CLI::App& app, Action& chosen)
{
    auto const options = std::make_shared<PathOptions>();
    CLI::App* group = app.add_subcommand("path", "Work on paths as text, one result a line");
    group->require_subcommand(1);

    addOperation(*group, chosen, options, "normalize", "Print the canonical form", normalize);
    addOperation(*group, chosen, options, "absolute", "Put relative paths under a directory", makeAbsolute)
        ->add_option("--pwd", options->m_directory, "The directory; the current one if not given");
    addOperation(*group, chosen, options, "tail", "Cut a directory off the front", cutTail)
        ->add_option("--base", options->m_directory, "The directory; without it the last element stays");
    addOperation(*group, chosen, options, "compare", "Compare two paths; exit code 1 if they differ", compare)
        ->get_option("PATH")
        ->expected(2);
}
