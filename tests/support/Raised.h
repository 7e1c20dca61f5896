// Tells what a call raised.

#ifndef ARXIUM_TESTS_SUPPORT_RAISED_H
#define ARXIUM_TESTS_SUPPORT_RAISED_H

#include <exception>
#include <string>
#include <vector>

#include "NEBCore/NEBThrowable.h"

using Lines = std::vector<std::string>;

// "NAME: MESSAGE", then each entry of the back trace: "FILE MACRO" and its text if it has one.
inline Lines describe(NEBThrowable const& error)
{
    Lines lines{std::string(error.getThrowableName()) + ": " + error.getMessage()};
    for (NEBBackTraceEntry const* entry : error.getBackTrace())
    {
        lines.push_back(std::string(entry->getLocation().m_file) + " " + entry->getMacro());
        if (entry->getText())
            lines.back() += std::string(" ") + entry->getText();
    }
    return lines;
}

inline std::string joined(Lines const& lines)
{
    std::string text;
    for (std::string const& line : lines)
        text += (text.empty() ? "" : " | ") + line;
    return text;
}

template <class Call>
Lines raisedBy(Call const& call)
{
    try
    {
        call();
    }
    catch (NEBThrowable const& error)
    {
        return describe(error);
    }
    catch (std::exception const& error)
    {
        return {error.what()};
    }
    return {};
}

#endif
