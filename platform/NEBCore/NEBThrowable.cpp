#include "NEBCore/NEBThrowable.h"

#include <memory>
#include <new>
#include <utility>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBIndent.h"

NEBBackTraceEntry::NEBBackTraceEntry(NEBFileLocation const& where, char const* text, char const* macro)
    : m_where(where), m_hasText(text != nullptr), m_text(text ? text : ""), m_macro(macro)
{
}

NEBThrowable& NEBThrowable::operator=(NEBThrowable const& other) noexcept
{
    m_backTrace = other.m_backTrace;
    return *this;
}

NEBThrowable::~NEBThrowable() = default;

char const* NEBThrowable::toString()
{
    I18NString text;
    toString(nullptr, nullptr, text, 0);
    return keepText(text.c_str());
}

void NEBThrowable::toString(char const*, char const*, I18NString& result, int indent)
{
    std::string text = getThrowableName();
    std::string const message = getMessage();
    if (!message.empty())
        text += ": " + message;
    result = indented(text, indent);
}

void NEBThrowable::addBackTrace(NEBFileLocation const& where, char const* text, char const* macro) noexcept
{
    try
    {
        m_backTrace.push(std::make_shared<NEBBackTraceEntry const>(where, text, macro));
    }
    catch (std::bad_alloc const&)
    {
        return;
    }
}

void NEBThrowable::transferBackTrace(NEBThrowable const& source)
{
    m_backTrace.transferFrom(source.m_backTrace);
}

std::vector<NEBBackTraceEntry const*> NEBThrowable::getBackTrace() const
{
    return m_backTrace.entries();
}

char const* NEBThrowable::keepText(std::string text) const
{
    return m_keptTexts.insert(std::move(text)).first->c_str();
}
