#include <exception>
#include <iostream>

#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "host/Commands.h"
#include "host/Failure.h"

namespace
{
int constexpr s_exitFailure = 2;

void addCommands(CLI::App& app, Action& chosen)
{
    for (auto const add :
         {addTourCommand, addSignCommand, addCheckCommand, addSealCommand, addUnsealCommand, addZipCommand,
          addUnzipCommand, addListCommand, addCatCommand, addQpCommand, addPathCommand, addChecksumCommand})
        add(app, chosen);
    app.require_subcommand(1);
}

int run(int argc, char** argv)
{
    CLI::App app("Sample host of the ArxiumCommon library.", "arxhost");
    std::string config;
    Action chosen;
    app.fallthrough();  // --config may stand behind the command too
    app.add_option("--config", config, "File of settings, a line key=value each")->check(CLI::ExistingFile);
    addCommands(app, chosen);
    try
    {
        app.parse(argc, argv);
    }
    catch (CLI::ParseError const& error)
    {
        return app.exit(error) == 0 ? 0 : s_exitFailure;
    }

    if (!config.empty())
        NEBConfigurationStore::getStore().load(config);
    int const exitCode = chosen();
    if (!std::cout.flush())
        failed(NEB_HERE, "Standard output can't be written.");
    return exitCode;
}
}  // namespace

// Exit code 0: done, or the answer is yes. 1: the answer is no. 2: failure, told on standard error.
int main(int argc, char** argv)
{
    try
    {
        return run(argc, argv);
    }
    catch (NEBThrowable& error)
    {
        printError(std::cerr, error);
    }
    catch (std::exception const& error)
    {
        std::cerr << "arxhost: " << error.what() << '\n';
    }
    return s_exitFailure;
}
