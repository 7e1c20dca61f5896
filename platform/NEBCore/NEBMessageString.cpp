#include "NEBCore/NEBMessageString.h"

#include "NEBCore/NEBIndent.h"

void NEBMessageString::toString(char const*, char const*, I18NString& result, int indent)
{
    result = indented(m_text.c_str(), indent);
}
