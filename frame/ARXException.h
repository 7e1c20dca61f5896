// The library's own exception. It can be caught as ARXException, NEBException, NEBThrowable or NEBMessageSet.
//
// The library raises it with severity 1 and code 0: the text of the failure is a message in it, and the name
// of the operation that failed stands in its back trace. An object belongs to the thread that made it.

#ifndef ARXIUM_FRAME_ARXEXCEPTION_H
#define ARXIUM_FRAME_ARXEXCEPTION_H

#include <cstdint>

#include "NEBCore/NEBException.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXException : public NEBException
{
public:
    ARXException(ARXException const& other);
    explicit ARXException(std::int32_t code);
    ARXException(NEBSeverity severity, std::int32_t code);
    // UTF-8; becomes a message.
    explicit ARXException(char const* text);
    ARXException(NEBSeverity severity, char const* text);
    // Takes over source's back trace and messages, which source loses though it is passed as constant, and
    // adds message, which may be null, behind them.
    ARXException(NEBException const& source, NEBMessageBase const* message);
    ~ARXException() override;

    ARXException& operator=(ARXException const& other);

    // Owned by the caller. Raises NEBOutOfMemoryError without memory.
    NEBThrowable* clone() const override;
    [[noreturn]] void hurl(NEBFileLocation const& where, char const* text, char const* macro) override;
    char const* getThrowableName() const override;

    // Adds a clone of message; chains without losing the type.
    ARXException& operator<<(NEBMessageBase const& message);
};

#endif
