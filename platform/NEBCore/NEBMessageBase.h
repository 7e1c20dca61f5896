// A message that an exception can carry. One object serves one thread at a time.

#ifndef NEBCORE_NEBMESSAGEBASE_H
#define NEBCORE_NEBMESSAGEBASE_H

#include <cstdint>

#include "NEBCore/NEBCoreExport.h"

class I18NString;

// 1 is an error; the higher the number, the more serious. Not an enumeration, for which NEBException(1, 0)
// would choose another constructor.
using NEBSeverity = std::int32_t;

class NEBCORE_API NEBMessageBase
{
public:
    // The virtual operations keep this order: it is the order of their slots.
    virtual ~NEBMessageBase();
    // Returns a new object of the same class, which the caller owns.
    virtual NEBMessageBase* clone() const = 0;
    virtual char const* getClassName() const = 0;
    // Appends the message's text to result. first and second (may be null) fill the places {0} and {1}.
    virtual void format(char const* first, char const* second, I18NString& result) = 0;
    // Replaces result by the text, each line after indent blanks.
    virtual void toString(char const* first, char const* second, I18NString& result, int indent) = 0;
    virtual NEBSeverity getSeverity() const { return m_severity; }
    virtual void setSeverity(NEBSeverity severity) { m_severity = severity; }

private:
    NEBSeverity m_severity = 1;
};

#endif
