#include <iostream>
#include <string>
#include <vector>

#include "Commands.h"

namespace
{
// Escapes text for a page: "\" and "-" have meanings of their own, and so has a "." that begins a line.
std::string roff(std::string const& text)
{
    std::string escaped = "\\&";
    for (char const c : text)
        escaped += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    return escaped;
}

std::vector<CLI::App const*> commandsOf(CLI::App const& app)
{
    return app.get_subcommands([](CLI::App const* command) { return !command->get_group().empty(); });
}

void printOptions(CLI::App const& app)
{
    for (CLI::Option const* option : app.get_options())
        std::cout << ".TP\n.B " << roff(option->get_name(false, true)) << '\n'
                  << roff(option->get_description()) << '\n';
}

void printCommand(CLI::App const& command, std::string const& prefix)
{
    std::string const name = prefix + command.get_name();
    std::cout << ".SS " << roff(name);
    for (CLI::Option const* option :
         command.get_options([](auto const* each) { return each->get_positional(); }))
        std::cout << ' '
                  << (option->get_required() ? option->get_name(true) : '[' + option->get_name(true) + ']');
    std::cout << '\n' << roff(command.get_description()) << ".\n";
    printOptions(command);
    for (CLI::App const* inner : commandsOf(command))
        printCommand(*inner, name + ' ');
}

int printManual(CLI::App const& app)
{
    std::cout << ".TH ARXHOST 1 \"\" \"arxhost " ARXHOST_VERSION
                 "\" \"User Commands\"\n"
                 ".SH NAME\narxhost \\- seal files, sign URLs, pack and unpack archives\n"
                 ".SH SYNOPSIS\n.B arxhost\n.RI [ OPTIONS ] \" COMMAND \" [ ARGUMENTS ]\n"
                 ".SH DESCRIPTION\n"
              << roff(app.get_description()) << "\n.SH OPTIONS\n";
    printOptions(app);
    std::cout << ".SH COMMANDS\n";
    for (CLI::App const* command : commandsOf(app))
        printCommand(*command, "");
    std::cout << ".SH \"EXIT STATUS\"\n" << roff(app.get_footer()) << '\n';
    return 0;
}

// The words that may follow app's name: commands and options.
std::string wordsOf(CLI::App const& app)
{
    std::string words;
    for (CLI::App const* command : commandsOf(app))
        words += command->get_name() + ' ';
    for (CLI::Option const* option : app.get_options())
        for (std::string const& name : option->get_lnames())
            words += "--" + name + ' ';
    return words;
}

int printCompletion(CLI::App const& app)
{
    std::cout << "# Completion of arxhost for bash: commands, options and file names.\n_arxhost()\n{\n"
                 "    local words='"
              << wordsOf(app) << "'\n    case ${COMP_WORDS[1]-} in\n";
    for (CLI::App const* command : commandsOf(app))
        std::cout << "        " << command->get_name() << ") ((COMP_CWORD > 1)) && words='"
                  << wordsOf(*command) << wordsOf(app).substr(wordsOf(app).find("--")) << "' ;;\n";
    std::cout << "    esac\n    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- "
                 "\"${COMP_WORDS[COMP_CWORD]}\")\n}\n"
                 "complete -o default -F _arxhost arxhost\n";
    return 0;
}
}  // namespace

void addManualCommands(CLI::App& app, Action& chosen)
{
    auto const add = [&](char const* name, int (*print)(CLI::App const&))
    {
        CLI::App* command = app.add_subcommand(name)->group("");
        command->callback([&app, &chosen, print] { chosen = [&app, print] { return print(app); }; });
    };
    add("manual", printManual);
    add("completion", printCompletion);
}
