#include "host/Commands.h"
#include "host/RunningLibrary.h"
#include "host/SealedFile.h"

void addSealCommand(CLI::App& app, Action& chosen)
{
    addFilePairCommand(app, chosen,
                       {"seal", "Write an encrypted copy of a file", "The file", "The encrypted copy"},
                       [](std::string const& source, std::string const& target)
                       {
                           RunningLibrary const library;
                           sealFile(source, target);
                       });
}
