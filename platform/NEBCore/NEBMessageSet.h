// The messages that an exception carries, in the order in which they were added.
//
// A copy needs no memory and shares the messages: what is changed through getMessages of one is changed in
// all. Copies on several threads are therefore safe only as long as nobody changes or formats their messages.
//
// Example:
//     #include "NEBCore/I18NString.h"
//     #include "NEBCore/NEBMessageString.h"
//     NEBMessageSet messages;
//     messages.addMessage(NEBMessageString("The disk is full."));
//     I18NString text;
//     for (NEBMessageBase* message : messages.getMessages())
//         message->format(nullptr, nullptr, text);

#ifndef NEBCORE_NEBMESSAGESET_H
#define NEBCORE_NEBMESSAGESET_H

#include <vector>

#include "NEBCore/NEBCoreExport.h"
#include "NEBCore/NEBMessageBase.h"
#include "NEBCore/NEBSharedList.h"

class NEBCORE_API NEBMessageSet
{
public:
    NEBMessageSet() = default;
    NEBMessageSet(NEBMessageSet const&) = default;
    NEBMessageSet& operator=(NEBMessageSet const&) = default;
    virtual ~NEBMessageSet();

    // Adds a clone of message. Without memory raises std::bad_alloc and leaves the set as it was.
    void addMessage(NEBMessageBase const& message);
    // Moves the messages out of source, which ends empty though it is passed as constant. Messages that this
    // set shares with source stay once.
    void transferMessages(NEBMessageSet const& source);
    // Oldest first; they live as long as this set or a copy of it.
    std::vector<NEBMessageBase*> getMessages() const;

private:
    mutable NEBSharedList<NEBMessageBase> m_messages;
};

#endif
