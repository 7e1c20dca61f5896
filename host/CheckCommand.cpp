#include <iostream>
#include <memory>

#include "host/Commands.h"
#include "host/RunningLibrary.h"
#include "host/SignedUrl.h"

namespace
{
struct CheckOptions
{
    std::string m_url;
    std::string m_session;
};

int check(CheckOptions const& options)
{
    RunningLibrary const library;
    std::vector<std::string> const wrong = findWrongValues(options.m_url, options.m_session);
    for (std::string const& reason : wrong)
        std::cout << "wrong: " << reason << '\n';
    if (wrong.empty())
        std::cout << "right (what stands before the query is not signed)\n";
    return wrong.empty() ? 0 : 1;
}
}  // namespace

void addCheckCommand(CLI::App& app, Action& chosen)
{
    auto const options = std::make_shared<CheckOptions>();
    CLI::App* command =
        app.add_subcommand("check", "Rebuild a signed URL and compare; exit code 1 if it is wrong");
    command->add_option("URL", options->m_url, "The URL, with or without a base path")->required();
    command->add_option("--session", options->m_session, "Identifier of the caller's session")->required();
    command->callback([&chosen, options] { chosen = [options] { return check(*options); }; });
}
