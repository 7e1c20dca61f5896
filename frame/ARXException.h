// The library's own exception. It can be caught as ARXException, NEBException, NEBThrowable or NEBMessageSet.
//
// The library raises it with severity 1 and code 0. The text of the failure is a message in it, the name of
// the failed operation an entry of its back trace. Copies share their messages. An object belongs to the
// thread that made it.
//
// Example:
//     #include "NEBCore/NEBMessageString.h"
//     ARXException error(1, 0);
//     error << NEBMessageString("The disk is full.");
//     error.hurl(NEB_HERE, "Host::store", "NEB_THROW");

#ifndef ARXIUM_FRAME_ARXEXCEPTION_H
#define ARXIUM_FRAME_ARXEXCEPTION_H

#include <cstdint>

#include "NEBCore/NEBException.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXException : public NEBException
{
public:
    ARXException(ARXException const& other) noexcept;
    explicit ARXException(std::int32_t code);
    ARXException(NEBSeverity severity, std::int32_t code);
    // UTF-8; becomes a message.
    explicit ARXException(char const* text);
    ARXException(NEBSeverity severity, char const* text);
    // Takes the back trace and the messages out of source, though it is passed as constant, and then adds
    // message, which may be null.
    ARXException(NEBException const& source, NEBMessageBase const* message);
    ~ARXException() override;

    ARXException& operator=(ARXException const& other) noexcept;

    // Returns an object that the caller owns. Lack of memory raises NEBOutOfMemoryError.
    NEBThrowable* clone() const override;
    [[noreturn]] void hurl(NEBFileLocation const& where, char const* text, char const* macro) override;
    char const* getThrowableName() const override;

    // Adds a clone of message. Returns this object, so that calls chain.
    ARXException& operator<<(NEBMessageBase const& message);
};

#endif
