#include "NEBCore/NEBException.h"

#include <utility>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBIndent.h"
#include "NEBCore/NEBMessageString.h"

namespace
{
std::int32_t constexpr s_defaultCode = 0;
NEBSeverity constexpr s_defaultSeverity = 1;
}  // namespace

NEBException::NEBException(std::int32_t code) : NEBException(s_defaultSeverity, code) {}

NEBException::NEBException(NEBSeverity severity, std::int32_t code) : m_severity(severity), m_code(code) {}

NEBException::NEBException(char const* text) : NEBException(s_defaultSeverity, text) {}

NEBException::NEBException(NEBSeverity severity, char const* text) : NEBException(severity, s_defaultCode)
{
    if (text)
        addMessage(NEBMessageString(I18NString(text)));
}

NEBException::NEBException(NEBException const& other) noexcept = default;

NEBException& NEBException::operator=(NEBException const& other) noexcept = default;

NEBException::~NEBException() = default;

NEBThrowable* NEBException::clone() const
{
    return new NEBException(*this);
}

void NEBException::hurl(NEBFileLocation const& where, char const* text, char const* macro)
{
    addBackTrace(where, text, macro);
    throw *this;
}

char const* NEBException::getMessage()
{
    return static_cast<NEBException const*>(this)->getMessage();
}

char const* NEBException::getThrowableName() const
{
    return "NEBException";
}

char const* NEBException::toString()
{
    return NEBThrowable::toString();
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
