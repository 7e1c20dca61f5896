#include "Failure.h"

#include <cerrno>
#include <cstring>
#include <iostream>

#include <unistd.h>

#include "NEBCore/NEBAssertError.h"
#include "Text.h"

namespace
{
std::string& linePrefix()
{
    static std::string s_prefix = "arxhost: ";
    return s_prefix;
}
}  // namespace

void failed(NEBFileLocation const& where, std::string const& text)
{
    NEBException(text.c_str()).hurl(where, nullptr, "NEB_THROW");
}

void failed(NEBFileLocation const& where, std::string const& object, std::string const& reason)
{
    failed(where, object + ": " + reason);
}

void systemFailed(NEBFileLocation const& where, std::string const& object)
{
    failed(where, object, std::strerror(errno));
}

void failedBy(NEBThrowable const& error, std::string const& object)
{
    NEBException named((object + ": " + reasonOf(error)).c_str());
    named.transferBackTrace(error);
    named.hurl(NEB_HERE, nullptr, "NEB_RETHROW");
}

std::string reasonOf(NEBThrowable const& error)
{
    std::string message = error.getMessage();
    std::size_t const first = message.find('"');
    std::size_t const last = message.rfind('"');
    if (!dynamic_cast<NEBAssertError const*>(&error) || first == last)
        return message;
    return message.substr(first + 1, last - first - 1);
}

void setCommandName(std::string const& name)
{
    linePrefix() = "arxhost: " + name + ": ";
}

void printError(std::string const& text)
{
    if (isatty(STDERR_FILENO) == 1)
        std::cerr << "\r\033[K";  // a line of progress may be there
    std::cerr << linePrefix() << printable(text) << '\n';
}

void printTrace(NEBThrowable const& error)
{
    std::cerr << error.getThrowableName() << '\n' << error.getMessage() << '\n';
    for (NEBBackTraceEntry const* entry : error.getBackTrace())
    {
        std::cerr << "  " << entry->getMacro() << " at " << entry->getLocation().m_file << ':'
                  << entry->getLocation().m_line;
        if (entry->getText())
            std::cerr << ", " << entry->getText();
        std::cerr << '\n';
    }
}
