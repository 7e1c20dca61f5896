// A message of the library's message file, for hosts that report in the library's name.
//
// getMessage changes the object, so one object serves one thread at a time.

#ifndef ARXIUM_FRAME_ARXMESSAGE_H
#define ARXIUM_FRAME_ARXMESSAGE_H

#include <cstdint>

#include "NEBCore/NEBMessage.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXMessage : public NEBMessage
{
public:
    // Message id of the library's own message file. For number 0 write 0u: a plain 0 could also be a null
    // text.
    explicit ARXMessage(std::uint32_t id);
    // No message yet, of the message file of that name (UTF-8).
    explicit ARXMessage(char const* messageFile);
    ~ARXMessage() override;

    // Replaces result by the text of message id, which becomes this object's current message. formatArgument
    // (may be null) stands for both places {0} and {1} of the text.
    void getMessage(char const* formatArgument, std::uint32_t id, I18NString& result);
};

#endif
