// Lines of text, each after blanks. Internal to the messages.

#ifndef NEBCORE_NEBINDENT_H
#define NEBCORE_NEBINDENT_H

#include <string>

#include "NEBCore/I18NString.h"

inline I18NString indented(std::string text, std::int32_t indent)
{
    std::string const blanks(indent > 0 ? static_cast<std::size_t>(indent) : 0, ' ');
    for (std::size_t end = 0; (end = text.find('\n', end)) != std::string::npos; ++end)
        text.insert(end + 1, blanks);
    return I18NString((blanks + text).c_str());
}

#endif
