#include <iostream>

#include "Commands.h"
#include "RunningLibrary.h"
#include "SignedUrl.h"
#include "Text.h"

namespace
{
struct SignOptions
{
    std::string m_file;
    std::string m_session;
    bool m_dispatcher = false;
};

struct CheckOptions
{
    std::string m_url;
    std::string m_session;
    bool m_json = false;
};

int sign(SignOptions const& options)
{
    RunningLibrary const library;
    std::cout << signFile(options.m_file, options.m_session, options.m_dispatcher) << '\n';
    return 0;
}

void printText(std::vector<std::string> const& wrong)
{
    for (std::string const& reason : wrong)
        std::cout << "wrong: " << reason << '\n';
    if (wrong.empty())
        std::cout << "right (the text before the query is not signed)\n";
}

void printJson(std::string const& url, std::vector<std::string> const& wrong)
{
    std::cout << '{' << jsonMember("url", url) << ",\"right\":" << (wrong.empty() ? "true" : "false")
              << ",\"wrong\":[";
    for (std::string const& reason : wrong)
        std::cout << (&reason == &wrong.front() ? "" : ",") << jsonText(reason);
    std::cout << "]}\n";
}

int check(CheckOptions const& options)
{
    RunningLibrary const library;
    std::vector<std::string> const wrong = findWrongValues(options.m_url, options.m_session);
    if (options.m_json)
        printJson(options.m_url, wrong);
    else
        printText(wrong);
    return wrong.empty() ? 0 : 1;
}

void addSessionOption(CLI::App& command, std::string& session)
{
    // Without a session, s would be the signature of the name alone, which k shows to everybody.
    addRequired(command, "--session", session,
                "Identifier of the caller's session, which should begin with /");
}
}  // namespace

void addSignCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] =
        addCommand(app, chosen, "sign", "Print the signed URL of a stored file", sign);
    addRequired(*command, "FILE", options->m_file, "The file; its directory does not enter the URL");
    addSessionOption(*command, options->m_session);
    command->add_flag("--dispatcher", options->m_dispatcher, "Use the external dispatcher's base path");
}

void addCheckCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] = addCommand(
        app, chosen, "check", "Rebuild a signed URL and compare; exit code 1 if it is wrong", check);
    addRequired(*command, "URL", options->m_url, "The URL, with or without a base path");
    addSessionOption(*command, options->m_session);
    command->add_flag("--json", options->m_json, "Print the answer as an object of JSON");
}
