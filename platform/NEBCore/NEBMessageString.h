// A message that is its own text, for failures whose text is in no message file.
//
// Example:
//     #include "frame/ARXException.h"
//     ARXException error(1, 0);
//     error << NEBMessageString("The disk is full.");

#ifndef NEBCORE_NEBMESSAGESTRING_H
#define NEBCORE_NEBMESSAGESTRING_H

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBMessageBase.h"

class NEBCORE_API NEBMessageString : public NEBMessageBase
{
public:
    explicit NEBMessageString(I18NString const& text) : m_text(text) {}

    NEBMessageString* clone() const override { return new NEBMessageString(*this); }
    char const* getClassName() const override { return "NEBMessageString"; }
    // Appends the text as it is, without places for arguments.
    void format(char const*, char const*, I18NString& result) override { result.append(m_text); }
    void toString(char const* first, char const* second, I18NString& result, int indent) override;

private:
    I18NString m_text;
};

#endif
