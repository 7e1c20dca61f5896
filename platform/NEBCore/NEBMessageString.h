// A message that is its own text, for failures whose text no catalogue can hold.

#ifndef NEBCORE_NEBMESSAGESTRING_H
#define NEBCORE_NEBMESSAGESTRING_H

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBMessageBase.h"

class NEBCORE_API NEBMessageString : public NEBMessageBase
{
public:
    explicit NEBMessageString(I18NString const& text);

    NEBMessageString* clone() const override;
    char const* getClassName() const override;
    // The text as it is: it has no places for arguments.
    void format(char const* first, char const* second, I18NString& result) override;
    void toString(char const* first, char const* second, I18NString& result, int indent) override;

private:
    I18NString m_text;
};

#endif
