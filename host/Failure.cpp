#include "host/Failure.h"

#include <cerrno>
#include <cstring>
#include <ostream>

#include "NEBCore/NEBException.h"

void failed(NEBFileLocation const& where, std::string const& text)
{
    NEBException(text.c_str()).hurl(where, nullptr, "NEB_THROW");
}

void systemFailed(NEBFileLocation const& where, std::string const& text)
{
    failed(where, text + ": " + std::strerror(errno));
}

void printError(std::ostream& stream, NEBThrowable const& error)
{
    stream << error.getThrowableName() << '\n';
    std::string const message = error.getMessage();
    if (!message.empty())
        stream << message << '\n';
    for (NEBBackTraceEntry const* entry : error.getBackTrace())
    {
        stream << "  " << entry->getMacro() << " at " << entry->getLocation().m_file << ':'
               << entry->getLocation().m_line;
        if (entry->getText())
            stream << ", " << entry->getText();
        stream << '\n';
    }
}
