#include "ArchiveInput.h"
#include "Commands.h"
#include "Failure.h"
#include "OutputFile.h"
#include "path/ARXFmDir.h"

namespace
{
struct CatOptions
{
    std::string m_archive;
    std::string m_name;
};

int cat(CatOptions const& options)
{
    ArchiveInput archive(options.m_archive);
    while (archive.toNext())
    {
        ArchiveInput::Entry const entry = naming(archive.getName(), [&] { return archive.readEntry(); });
        if (!ARXFmDir::isEquivalentPath(entry.szFileName, options.m_name.c_str()))
            continue;
        naming(options.m_name, [&] { archive.copyEntry(entry, printBytes); });
        return 0;
    }
    printError(archive.getName() + ": no entry " + options.m_name);
    return 1;
}
}  // namespace

void addCatCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] = addCommand(
        app, chosen, "cat", "Print an archive's entry; exit code 1 if there is none of that name", cat);
    addRequired(*command, "ARCHIVE", options->m_archive, "The archive, or - for standard input");
    addRequired(*command, "NAME", options->m_name, "The entry's name; / and \\ are equal");
}
