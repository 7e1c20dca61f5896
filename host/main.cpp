#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include "Commands.h"
#include "Failure.h"
#include "Interrupt.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"

namespace
{
int constexpr s_exitFailure = 2;

char const* const s_exitCodes =
    "0: done, or the answer is yes. 1: the answer is no. 2: failure, told on standard error in a line each, "
    "\"arxhost: COMMAND: OBJECT: REASON\". SIGHUP, SIGINT, SIGPIPE and SIGTERM end the work, remove what is "
    "not complete, and show in a shell as 128 plus the signal's number.";

struct GlobalOptions
{
    std::string m_config;
    bool m_trace = false;
};

void addCommands(CLI::App& app, Action& chosen)
{
    for (auto const add : {addTourCommand, addSignCommand, addCheckCommand, addSealCommand, addUnsealCommand,
                           addZipCommand, addUnzipCommand, addListCommand, addCatCommand, addQpCommand,
                           addPathCommand, addChecksumCommand, addManualCommands})
        add(app, chosen);
    app.require_subcommand(1);
}

void addOptions(CLI::App& app, GlobalOptions& options)
{
    app.fallthrough();  // they may follow the command too
    app.footer(s_exitCodes);
    app.set_version_flag("--version", ARXHOST_VERSION, "Print the version and exit");
    app.add_option("--config", options.m_config, "File of settings, a line key=value each")
        ->check(refuseEmpty);
    app.add_flag("--trace", options.m_trace,
                 "Print with an error also its exception, messages and back trace");
}

int refuseUsage(CLI::App const& app, CLI::ParseError const& error)
{
    if (!app.get_subcommands().empty())
        setCommandName(app.get_subcommands().front()->get_name());
    std::vector<std::string> const unknown = app.remaining(true);
    printError((unknown.empty() ? error.what() : unknown[0] + ": no such command, option or argument") +
               " (see --help)");
    return s_exitFailure;
}

int work(Action const& action)
{
    std::cout.exceptions(std::ios::badbit);
    std::cerr.tie(nullptr);  // or printError would flush standard output, and raise what fails there
    try
    {
        int const exitCode = action();
        if (std::cout.flush())  // false if it failed where a destructor had to keep silent
            return exitCode;
    }
    catch (std::ios_base::failure const&)
    {
        // as if flush had returned false
    }
    stopIfInterrupted();  // by SIGPIPE, where nobody reads
    systemFailed(NEB_HERE, "standard output");
}

// What work began is undone before a failure is reported: dieBySignal runs no destructor.
int report(bool isTraced, Action const& action)
{
    try
    {
        return work(action);
    }
    catch (Interrupted const& interrupted)
    {
        dieBySignal(interrupted.m_signal);
    }
    catch (NEBThrowable const& error)
    {
        printError(reasonOf(error));
        if (isTraced)
            printTrace(error);
    }
    catch (std::filesystem::filesystem_error const& error)
    {
        printError(error.path1().string() + ": " + error.code().message());
    }
    catch (std::bad_alloc const&)
    {
        printError(std::strerror(ENOMEM));
    }
    catch (std::exception const& error)
    {
        printError(error.what());
    }
    return s_exitFailure;
}

// A file that is opened later must not take the number of a closed standard stream, and be read or written as
// it. The streams still fail, since /dev/null is opened for the other direction.
void occupyStandardStreams()
{
    for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

int run(int argc, char** argv)
{
    // The 268 KB that minizip frees after each entry stay in the process: 400 small files take a third of the
    // time.
    mallopt(M_TRIM_THRESHOLD, 64 << 20);
    occupyStandardStreams();

    CLI::App app("Sample host of the ArxiumCommon library.", "arxhost");
    GlobalOptions options;
    Action chosen;
    addOptions(app, options);
    addCommands(app, chosen);
    try
    {
        app.parse(argc, argv);
    }
    catch (CLI::Success const& answer)  // help or version
    {
        return report(false, [&] { return app.exit(answer); });
    }
    catch (CLI::ParseError const& error)
    {
        return refuseUsage(app, error);
    }
    setCommandName(app.get_subcommands().front()->get_name());
    return report(
        options.m_trace,
        [&]
        {
            if (!options.m_config.empty())
                NEBConfigurationStore::getStore().load(options.m_config);
            watchSignals();  // only now: a signal ends at once what waits for the settings of a pipe
            return chosen();
        });
}
}  // namespace

int main(int argc, char** argv)
{
    try
    {
        return run(argc, argv);
    }
    catch (std::exception const&)  // memory lacks even for the report
    {
        std::fputs("arxhost: Cannot allocate memory\n", stderr);
    }
    return s_exitFailure;
}
