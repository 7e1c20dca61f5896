// How the library raises its errors: out of line, with text and place decided at the call.

#ifndef ARXIUM_FRAME_ARXRAISE_H
#define ARXIUM_FRAME_ARXRAISE_H

#include <initializer_list>

#include "NEBCore/NEBFileLocation.h"

// Raises NEBAssertError with that text.
[[noreturn]] void assertionFailed(NEBFileLocation const& where, char const* text);

// Raises ARXException with a message for each text and operation in its back trace.
[[noreturn]] void raiseWithText(NEBFileLocation const& where, std::initializer_list<char const*> texts,
                                char const* operation);

// The same for a failed call of the crypto interface. details becomes the message, unless it is null, and is
// freed and cleared before the exception leaves.
[[noreturn]] void raiseWithDetails(NEBFileLocation const& where, char*& details, char const* operation);

// Raises NEBOutOfMemoryError.
[[noreturn]] void outOfMemory(NEBFileLocation const& where);

// Rethrows the exception of the present handler as NEB_NEW describes.
[[noreturn]] void rethrowAllocation(NEBFileLocation const& where);

#endif
