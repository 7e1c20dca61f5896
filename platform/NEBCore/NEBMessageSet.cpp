#include "NEBCore/NEBMessageSet.h"

NEBMessageSet::~NEBMessageSet() = default;

void NEBMessageSet::addMessage(NEBMessageBase const& message)
{
    m_messages.push(std::shared_ptr<NEBMessageBase>(message.clone()));
}

void NEBMessageSet::transferMessages(NEBMessageSet const& source)
{
    m_messages.transferFrom(source.m_messages);
}

std::vector<NEBMessageBase*> NEBMessageSet::getMessages() const
{
    std::vector<NEBMessageBase*> messages;
    for (auto const* message : m_messages.entries())
        messages.push_back(message->get());
    return messages;
}
