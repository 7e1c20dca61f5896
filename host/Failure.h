// How the host reports errors: one line, "arxhost: COMMAND: OBJECT: REASON", on standard error.

#ifndef ARXHOST_FAILURE_H
#define ARXHOST_FAILURE_H

#include <string>

#include "NEBCore/NEBException.h"

// Raises NEBException with that message.
[[noreturn]] void failed(NEBFileLocation const& where, std::string const& text);
// The same with "OBJECT: REASON".
[[noreturn]] void failed(NEBFileLocation const& where, std::string const& object, std::string const& reason);
// The same; the reason is what errno says.
[[noreturn]] void systemFailed(NEBFileLocation const& where, std::string const& object);
// Raises NEBException with the reason of error, object before it, and its back trace.
[[noreturn]] void failedBy(NEBThrowable const& error, std::string const& object);

// The message of error; of a failed assertion only the text that it gives as its reason.
std::string reasonOf(NEBThrowable const& error);

// Every line printed from now on names that command.
void setCommandName(std::string const& name);
void printError(std::string const& text);
// Prints the exception's name, its messages and its back trace, an entry a line.
void printTrace(NEBThrowable const& error);

// Runs action, which is about object: what the library raises then names it.
template <class Action>
auto naming(std::string const& object, Action const& action)
{
    try
    {
        return action();
    }
    catch (NEBThrowable const& error)
    {
        failedBy(error, object);
    }
}

#endif
