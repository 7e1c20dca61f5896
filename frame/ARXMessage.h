// A message of the library's message file, for hosts that report in the library's name.
//
// Texts are UTF-8. getMessage changes the object, so one object serves one thread at a time.
//
// Example:
//     ARXMessage message(0u);
//     I18NString text;
//     message.getMessage("a.zip", 2, text);  // "The archive a.zip can't be read."

#ifndef ARXIUM_FRAME_ARXMESSAGE_H
#define ARXIUM_FRAME_ARXMESSAGE_H

#include <cstdint>

#include "NEBCore/NEBMessage.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXMessage : public NEBMessage
{
public:
    // Message id of the library's own message file. Write 0u for number 0, since 0 could also be a null text.
    explicit ARXMessage(std::uint32_t id);
    // Number 0 of the message file of that name. Take the library's own from ARXI18NRes, whose first call
    // makes its messages known.
    explicit ARXMessage(char const* messageFile);
    ~ARXMessage() override;

    // Replaces result by the text of message id, which becomes this object's current message. formatArgument
    // fills the places {0} and {1}; it may be null, and may be the text of result.
    void getMessage(char const* formatArgument, std::uint32_t id, I18NString& result);
};

#endif
