#include "host/Commands.h"
#include "host/RunningLibrary.h"
#include "host/SealedFile.h"

void addUnsealCommand(CLI::App& app, Action& chosen)
{
    addFilePairCommand(
        app, chosen,
        {"unseal", "Write the contents of an encrypted file", "The encrypted file", "The plain copy"},
        [](std::string const& source, std::string const& target)
        {
            RunningLibrary const library;
            unsealFile(source, target);
        });
}
