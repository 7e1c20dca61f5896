#include "NEBCore/NEBException.h"

#include <utility>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBIndent.h"
#include "NEBCore/NEBMessageString.h"

NEBException::NEBException(NEBSeverity severity, char const* text) : NEBException(severity, 0)
{
    if (text)
        addMessage(NEBMessageString(I18NString(text)));
}

NEBException::~NEBException() = default;

void NEBException::hurl(NEBFileLocation const& where, char const* text, char const* macro)
{
    addBackTrace(where, text, macro);
    throw *this;
}

char const* NEBException::getMessage() const
{
    I18NString text;
    for (NEBMessageBase* message : getMessages())
    {
        if (!text.empty())
            text.append(u'\n', 1);
        message->format(nullptr, nullptr, text);
    }
    return keepText(text.c_str());
}

void NEBException::toString(char const* first, char const* second, I18NString& result, int indent)
{
    I18NString text = indented(getThrowableName(), indent);
    for (NEBMessageBase* message : getMessages())
    {
        I18NString line;
        message->toString(first, second, line, indent + 2);
        text.append(u'\n', 1);
        text.append(line);
    }
    result = std::move(text);
}

NEBException& NEBException::operator<<(NEBMessageBase const& message)
{
    addMessage(message);
    return *this;
}
