// What a call raised, as lines of text that a test compares.

#ifndef ARXIUM_TESTS_SUPPORT_RAISED_H
#define ARXIUM_TESTS_SUPPORT_RAISED_H

#include <string>
#include <vector>

#include "NEBCore/NEBException.h"

using Lines = std::vector<std::string>;

// "NAME: MESSAGE", or "NAME: no messages" for an empty set; then a line for each entry of the back trace,
// "FILE MACRO" or "FILE MACRO TEXT".
inline Lines describe(NEBThrowable const& error)
{
    auto const* const set = dynamic_cast<NEBMessageSet const*>(&error);
    std::string const message = set && set->getMessages().empty() ? "no messages" : error.getMessage();
    Lines lines{error.getThrowableName() + (": " + message)};
    for (NEBBackTraceEntry const* entry : error.getBackTrace())
        lines.push_back(std::string(entry->getLocation().m_file) + " " + entry->getMacro() +
                        (entry->getText() ? std::string(" ") + entry->getText() : ""));
    return lines;
}

inline std::string joined(Lines const& lines, char const* separator = " | ")
{
    std::string text;
    for (std::string const& line : lines)
        text += (text.empty() ? "" : separator) + line;
    return text;
}

// The description of what call raised; no lines if it raised nothing.
template <class Call>
Lines raisedBy(Call const& call)
{
    try
    {
        call();
        return {};
    }
    catch (NEBThrowable const& error)
    {
        return describe(error);
    }
    catch (std::exception const& error)
    {
        return {error.what()};
    }
}

#endif
