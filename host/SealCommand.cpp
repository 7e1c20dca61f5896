#include "Commands.h"
#include "Failure.h"
#include "RunningLibrary.h"
#include "SealedFile.h"

namespace
{
struct SealOptions
{
    std::string m_source;
    std::string m_target;
};

int seal(SealOptions const& options)
{
    if (options.m_target == "-")
        failed(NEB_HERE,
               "an encrypted file can't go to standard output: it gets its name when it is complete");
    RunningLibrary const library;
    sealFile(options.m_source, options.m_target);
    return 0;
}

int unseal(SealOptions const& options)
{
    if (options.m_source == "-")
        failed(NEB_HERE,
               "an encrypted file can't come from standard input: the crypto interface opens it by name");
    RunningLibrary const library;
    unsealFile(options.m_source, options.m_target);
    return 0;
}
}  // namespace

void addSealCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] =
        addCommand(app, chosen, "seal", "Write an encrypted copy of a file", seal);
    addRequired(*command, "FILE", options->m_source, "The file, or - for standard input");
    addRequired(*command, "OUT", options->m_target, "The encrypted copy; an existing one is replaced");
}

void addUnsealCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] =
        addCommand(app, chosen, "unseal", "Write the contents of an encrypted file", unseal);
    addRequired(*command, "FILE", options->m_source, "The encrypted file");
    addRequired(*command, "OUT", options->m_target,
                "The plain copy, for its owner alone unless it replaces a file; or - for standard output, "
                "whose bytes count only if the exit code is 0");
}
