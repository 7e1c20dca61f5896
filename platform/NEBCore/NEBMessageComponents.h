// What finds a message in its file: its number.

#ifndef NEBCORE_NEBMESSAGECOMPONENTS_H
#define NEBCORE_NEBMESSAGECOMPONENTS_H

#include "NEBCore/NEBMessageBase.h"

class NEBCORE_API NEBMessageComponents : public NEBMessageBase
{
public:
    void setMessage(std::uint32_t id) { m_id = id; }
    std::uint32_t getMessageId() const { return m_id; }

private:
    std::uint32_t m_id = 0;
};

#endif
