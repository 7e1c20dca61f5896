// The commands of arxhost, a file each.

#ifndef ARXHOST_COMMANDS_H
#define ARXHOST_COMMANDS_H

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

// What a command does once the command line is understood and the settings are loaded; gives the exit code.
using Action = std::function<int()>;

// What commands that make one file from another have in common.
struct FilePairTexts
{
    char const* m_name;
    char const* m_description;
    char const* m_source;
    char const* m_target;
};
void addFilePairCommand(CLI::App& app, Action& chosen, FilePairTexts const& texts,
                        void (*work)(std::string const& source, std::string const& target));

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

#endif
