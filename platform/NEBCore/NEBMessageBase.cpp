#include "NEBCore/NEBMessageBase.h"

NEBMessageBase::~NEBMessageBase() = default;

NEBSeverity NEBMessageBase::getSeverity() const
{
    return m_severity;
}

void NEBMessageBase::setSeverity(NEBSeverity severity)
{
    m_severity = severity;
}
