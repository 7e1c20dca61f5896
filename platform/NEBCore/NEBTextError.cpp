#include "NEBCore/NEBTextError.h"

#include <new>

NEBTextError::NEBTextError(std::int32_t code, char const* text) noexcept : m_code(code)
{
    try
    {
        m_text = text ? std::make_shared<std::string const>(text) : nullptr;
    }
    catch (std::bad_alloc const&)
    {
        m_text = nullptr;
    }
}

NEBTextError::NEBTextError(NEBTextError const&) noexcept = default;

NEBTextError& NEBTextError::operator=(NEBTextError const&) noexcept = default;

NEBTextError::~NEBTextError() = default;

char const* NEBTextError::getMessage() const
{
    return m_text ? m_text->c_str() : "";
}
