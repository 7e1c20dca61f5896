// How the host raises and prints errors.

#ifndef ARXHOST_FAILURE_H
#define ARXHOST_FAILURE_H

#include <iosfwd>
#include <string>

#include "NEBCore/NEBThrowable.h"

// Raises NEBException with that text.
[[noreturn]] void failed(NEBFileLocation const& where, std::string const& text);
// The same, with the reason that errno holds behind the text.
[[noreturn]] void systemFailed(NEBFileLocation const& where, std::string const& text);

// The exception's name, its messages and its back trace, one line an entry.
void printError(std::ostream& stream, NEBThrowable const& error);

#endif
