// The commands of arxhost, a file each or two that mirror each other.

#ifndef ARXHOST_COMMANDS_H
#define ARXHOST_COMMANDS_H

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

// What a command does once the command line is understood and the settings are loaded; returns the exit code.
using Action = std::function<int()>;

// Adds a command that calls run. The options, to which the caller binds what the user gives, live as long as
// it.
template <class Options>
std::pair<CLI::App*, Options*> addCommand(CLI::App& app, Action& chosen, char const* name,
                                          char const* description, int (*run)(Options const&))
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand(name, description);
    command->callback([&chosen, options, run] { chosen = [options, run] { return run(*options); }; });
    return {command, options.get()};
}

// A check of options and arguments: an empty value is mostly a variable that a script forgot to set.
inline std::string refuseEmpty(std::string const& value)
{
    return value.empty() ? "must not be empty" : "";
}

// Adds an option or argument that must be given, and not empty.
inline void addRequired(CLI::App& command, char const* name, std::string& value, char const* description)
{
    command.add_option(name, value, description)->required()->check(refuseEmpty);
}

// Each adds its command to app and, when the user calls it, stores in chosen what is to be done.
void addCatCommand(CLI::App& app, Action& chosen);
void addCheckCommand(CLI::App& app, Action& chosen);
void addChecksumCommand(CLI::App& app, Action& chosen);
void addListCommand(CLI::App& app, Action& chosen);
void addPathCommand(CLI::App& app, Action& chosen);
void addQpCommand(CLI::App& app, Action& chosen);
void addSealCommand(CLI::App& app, Action& chosen);
void addSignCommand(CLI::App& app, Action& chosen);
void addTourCommand(CLI::App& app, Action& chosen);
void addUnsealCommand(CLI::App& app, Action& chosen);
void addUnzipCommand(CLI::App& app, Action& chosen);
void addZipCommand(CLI::App& app, Action& chosen);
// Two commands that help doesn't list: "manual" prints the manual page, "completion" what bash completes by.
// Both describe what app holds when they run.
void addManualCommands(CLI::App& app, Action& chosen);

#endif
