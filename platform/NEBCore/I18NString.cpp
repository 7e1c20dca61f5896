#include "NEBCore/I18NString.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <ostream>

#include <utf8.h>

#include "NEBCore/NEBDowncastSize.h"
#include "NEBCore/NEBException.h"

namespace
{
char16_t constexpr s_escapeBase = 0xDC00;  // plus a byte from 0x80 up

bool isPair(std::u16string const& units, std::size_t at)
{
    return at + 1 < units.size() && (units[at] & 0xFC00) == 0xD800 && (units[at + 1] & 0xFC00) == 0xDC00;
}

bool isEscapedByte(char16_t unit)
{
    return unit >= s_escapeBase + 0x80 && unit <= s_escapeBase + 0xFF;
}

std::u16string decodeUtf8(char const* text, std::size_t size)
{
    char const* const end = text + size;
    // Most texts are ASCII, which is converted at once in half the time.
    char const* valid = std::find_if(text, end, [](unsigned char byte) { return byte >= 0x80; });
    std::u16string units(text, valid);
    units.reserve(size);
    while (valid != end)
    {
        char const* const invalid = utf8::find_invalid(valid, end);
        utf8::unchecked::utf8to16(valid, invalid, std::back_inserter(units));
        valid = invalid;
        if (valid != end)
            units += static_cast<char16_t>(s_escapeBase + static_cast<unsigned char>(*valid++));
    }
    return units;
}

std::string encodeUtf8(std::u16string const& units)
{
    auto const asciiEnd =
        std::find_if(units.begin(), units.end(), [](char16_t unit) { return unit >= 0x80; });
    std::string text(units.begin(), asciiEnd);
    text.reserve(units.size());
    for (std::size_t i = text.size(); i < units.size(); ++i)
    {
        char16_t const unit = units[i];
        auto const end = std::back_inserter(text);
        if (isPair(units, i))
            utf8::unchecked::append(0x10000u + ((unit & 0x3FFu) << 10) + (units[++i] & 0x3FFu), end);
        else if (isEscapedByte(unit))
            text += static_cast<char>(unit - s_escapeBase);
        else
            utf8::unchecked::append(unit, end);
    }
    return text;
}

std::int32_t toOffset(std::size_t position)
{
    return position == std::u16string::npos ? -1 : NEBDowncastSize::int32(position, __FILE__, __LINE__);
}
}  // namespace

I18NString::I18NString(char const* text, char const* encoding, std::int32_t length, void*, void*)
{
    if (encoding)
        NEBException("I18NString: only UTF-8 is known, named by a null encoding")
            .hurl(NEB_HERE, nullptr, "NEB_THROW");
    if (text)
        m_units = decodeUtf8(text, length < 0 ? std::strlen(text) : static_cast<std::size_t>(length));
}

I18NString::I18NString(std::int32_t size, void*, void*)
{
    if (size > 0)
        m_units.reserve(static_cast<std::size_t>(size) / sizeof(char16_t));
}

I18NString::I18NString(I18NString const& other) : m_units(other.m_units) {}

I18NString::I18NString(I18NString&& other) noexcept
    : m_units(std::move(other.m_units)), m_utf8(other.m_utf8.exchange(nullptr))
{
}

I18NString& I18NString::operator=(I18NString const& other)
{
    m_units = other.m_units;
    changed();
    return *this;
}

I18NString& I18NString::operator=(I18NString&& other) noexcept
{
    changed();
    m_units = std::move(other.m_units);
    m_utf8 = other.m_utf8.exchange(nullptr);
    return *this;
}

I18NString::~I18NString()
{
    changed();
}

void I18NString::setTo(void const* buffer, std::uint32_t size)
{
    std::u16string units(size / sizeof(char16_t), u'\0');
    if (!units.empty())
        std::memcpy(&units[0], buffer, units.size() * sizeof(char16_t));
    if (!units.empty() && units.back() == 0)
        units.pop_back();
    m_units = std::move(units);
    changed();
}

char const* I18NString::c_str(void*, void*, void*, void*) const
{
    std::string* known = m_utf8;
    if (!known)
    {
        auto made = std::make_unique<std::string>(encodeUtf8(m_units));
        // The text of the first of several readers stays, since it has been returned already.
        if (m_utf8.compare_exchange_strong(known, made.get()))
            known = made.release();
    }
    return known->c_str();
}

std::uint16_t const* I18NString::getExternalBuffer() const
{
    return reinterpret_cast<std::uint16_t const*>(m_units.c_str());
}

std::int32_t I18NString::size() const
{
    return NEBDowncastSize::int32((m_units.size() + 1) * sizeof(char16_t), __FILE__, __LINE__);
}

std::int32_t I18NString::find(char16_t unit, std::int32_t start) const
{
    return toOffset(m_units.find(unit, clamp(start)));
}

std::int32_t I18NString::rfind(char16_t unit, std::int32_t start) const
{
    return toOffset(m_units.rfind(unit, clamp(start)));
}

I18NString I18NString::substr(std::int32_t start, std::int32_t count) const
{
    return I18NString(m_units.substr(clamp(start), static_cast<std::size_t>(count)));  // -1 becomes npos
}

I18NString I18NString::substring(std::int32_t start, std::int32_t end) const
{
    std::size_t const from = clamp(start);
    return I18NString(m_units.substr(from, std::max(clamp(end), from) - from));
}

std::int32_t I18NString::incrementOffset(std::int32_t offset) const
{
    std::size_t const from = clamp(offset);
    return toOffset(std::min(from + (isPair(m_units, from) ? 2 : 1), m_units.size()));
}

void I18NString::append(char16_t unit, std::int32_t count)
{
    if (count > 0)
        m_units.append(static_cast<std::size_t>(count), unit);
    changed();
}

void I18NString::append(I18NString const& text)
{
    m_units += text.m_units;
    changed();
}

void I18NString::replace(std::int32_t offset, std::int32_t length, char16_t unit, std::int32_t count)
{
    std::size_t const units = count > 0 ? static_cast<std::size_t>(count) : 0;
    m_units.replace(clamp(offset), static_cast<std::size_t>(length), units, unit);
    changed();
}

void I18NString::erase(std::int32_t start, std::int32_t count)
{
    m_units.erase(clamp(start), static_cast<std::size_t>(count));
    changed();
}

void I18NString::remove()
{
    m_units.clear();
    changed();
}

void I18NString::changed()
{
    if (m_utf8)  // mostly not, and then without a bus lock
        delete m_utf8.exchange(nullptr);
}

std::size_t I18NString::clamp(std::int32_t offset) const
{
    return std::min(static_cast<std::size_t>(offset), m_units.size());  // -1 becomes a huge one
}

std::ostream& operator<<(std::ostream& stream, I18NString const& text)
{
    std::uint16_t const* const units = text.getExternalBuffer();
    std::size_t const count = static_cast<std::size_t>(text.size()) / sizeof *units - 1;
    return stream << encodeUtf8({units, units + count});  // c_str would end at a zero unit
}
