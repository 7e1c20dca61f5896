#include "NEBCore/NEBMessageSet.h"

#include <memory>

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
    return m_messages.entries();
}
