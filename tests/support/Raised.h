// Tells what a call raised.

#ifndef ARXIUM_TESTS_SUPPORT_RAISED_H
#define ARXIUM_TESTS_SUPPORT_RAISED_H

#include <string>
#include <vector>

#include "NEBCore/NEBException.h"

using Lines = std::vector<std::string>;

// "NAME: MESSAGE", or "NAME: no messages" of an empty set, then each entry of the back trace: "FILE MACRO"
// and its text if it has one.
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
