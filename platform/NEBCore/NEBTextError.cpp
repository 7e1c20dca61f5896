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

NEBTextError::~NEBTextError() = default;
