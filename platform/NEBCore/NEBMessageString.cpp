#include "NEBCore/NEBMessageString.h"

#include "NEBCore/NEBIndent.h"

NEBMessageString::NEBMessageString(I18NString const& text) : m_text(text) {}

NEBMessageString* NEBMessageString::clone() const
{
    return new NEBMessageString(*this);
}

char const* NEBMessageString::getClassName() const
{
    return "NEBMessageString";
}

void NEBMessageString::format(char const*, char const*, I18NString& result)
{
    result.append(m_text);
}

void NEBMessageString::toString(char const*, char const*, I18NString& result, int indent)
{
    result = indented(m_text.c_str(), indent);
}
