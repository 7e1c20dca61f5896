#include "NEBCore/NEBMessage.h"

#include <cstring>
#include <string>

#include "NEBCore/NEBIndent.h"
#include "NEBCore/NEBMessageCatalogue.h"

namespace
{
// Replaces {0} and {1} in one pass, so that braces in an argument stay as they are.
std::string fillPlaces(char const* pattern, char const* first, char const* second)
{
    std::string filled;
    while (*pattern)
    {
        bool const isFirst = std::strncmp(pattern, "{0}", 3) == 0;
        if (isFirst || std::strncmp(pattern, "{1}", 3) == 0)
        {
            char const* argument = isFirst ? first : second;
            filled += argument ? argument : "";
            pattern += 3;
        }
        else
            filled += *pattern++;
    }
    return filled;
}
}  // namespace

void NEBMessage::format(char const* first, char const* second, I18NString& result)
{
    char const* pattern = NEBMessageCatalogue::find(m_file.c_str(), getMessageId());
    std::string const text = pattern ? fillPlaces(pattern, first, second)
                                     : m_file.c_str() + (":" + std::to_string(getMessageId()));
    result.append(I18NString(text.c_str()));
}

void NEBMessage::toString(char const* first, char const* second, I18NString& result, int indent)
{
    I18NString text;
    format(first, second, text);
    result = indented(text.c_str(), indent);
}
