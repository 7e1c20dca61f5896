#include <iostream>
#include <memory>

#include "host/Commands.h"
#include "host/RunningLibrary.h"
#include "host/SignedUrl.h"

namespace
{
struct SignOptions
{
    std::string m_file;
    std::string m_session;
    bool m_dispatcher = false;
};

int sign(SignOptions const& options)
{
    RunningLibrary const library;
    std::cout << signFile(options.m_file, options.m_session, options.m_dispatcher) << '\n';
    return 0;
}
}  // namespace

void addSignCommand(CLI::App& app, Action& chosen)
{
    auto const options = std::make_shared<SignOptions>();
    CLI::App* command = app.add_subcommand("sign", "Print the signed URL of a stored file");
    command->add_option("FILE", options->m_file, "The file; its directory does not enter the URL")
        ->required();
    command->add_option("--session", options->m_session, "Identifier of the caller's session")->required();
    command->add_flag("--dispatcher", options->m_dispatcher, "Use the external dispatcher's base path");
    command->callback([&chosen, options] { chosen = [options] { return sign(*options); }; });
}
