// The messages that an exception carries, in the order in which they were added. Copies never need memory.

#ifndef NEBCORE_NEBMESSAGESET_H
#define NEBCORE_NEBMESSAGESET_H

#include <memory>
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

    // Adds a clone of message. Without memory std::bad_alloc leaves and the set is unchanged.
    void addMessage(NEBMessageBase const& message);
    // Moves the messages out of source, which ends empty, though it is passed as constant. Messages that this
    // set already holds, being a copy of source, are not taken twice.
    void transferMessages(NEBMessageSet const& source);
    // Oldest first; they live as long as this set keeps them.
    std::vector<NEBMessageBase*> getMessages() const;

private:
    mutable NEBSharedList<std::shared_ptr<NEBMessageBase>> m_messages;
};

#endif
