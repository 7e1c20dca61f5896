#include "NEBCore/I18NString.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>
#include <utility>

#include "NEBCore/NEBDowncastSize.h"
#include "NEBCore/NEBException.h"

namespace
{
char16_t constexpr s_escapeBase = 0xDC00;  // plus a byte from 0x80 up

bool isHighSurrogate(char16_t unit)
{
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(char16_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

bool isEscapedByte(char16_t unit)
{
    return unit >= s_escapeBase + 0x80 && unit <= s_escapeBase + 0xFF;
}

// Returns the length of the sequence of more than one byte at text and writes its code point; returns 0 if it
// is not well-formed (the Unicode Standard, table 3-7).
std::size_t decodeSequence(unsigned char const* text, unsigned char const* end, char32_t& point)
{
    std::size_t const length = *text < 0xE0 ? 2 : *text < 0xF0 ? 3 : 4;
    if (*text < 0xC2 || *text > 0xF4 || static_cast<std::size_t>(end - text) < length)
        return 0;
    point = *text & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i)
    {
        if ((text[i] & 0xC0) != 0x80)
            return 0;
        point = point << 6 | (text[i] & 0x3Fu);
    }
    char32_t constexpr least[] = {0x80, 0x800, 0x10000};
    bool const isSurrogate = (point & ~0x7FFu) == 0xD800;
    return point < least[length - 2] || point > 0x10FFFF || isSurrogate ? 0 : length;
}

std::u16string decodeUtf8(char const* text, std::size_t size)
{
    auto const* const begin = reinterpret_cast<unsigned char const*>(text);
    auto const* const end = begin + size;
    // Most texts are ASCII, which is converted at once in half the time.
    auto const* byte = std::find_if(begin, end, [](unsigned char each) { return each >= 0x80; });
    std::u16string units(begin, byte);
    units.reserve(size);
    while (byte != end)
    {
        char32_t point = 0;
        if (*byte < 0x80)
            units += static_cast<char16_t>(*byte++);
        else if (std::size_t const length = decodeSequence(byte, end, point))
        {
            byte += length;
            if (point > 0xFFFF)
                units += {static_cast<char16_t>(0xD7C0 + (point >> 10)),
                          static_cast<char16_t>(0xDC00 | (point & 0x3FF))};
            else
                units += static_cast<char16_t>(point);
        }
        else
            units += static_cast<char16_t>(s_escapeBase + *byte++);
    }
    return units;
}

void appendUtf8(std::string& text, char32_t point)
{
    auto const put = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (point < 0x80)
        return put(point);
    char32_t constexpr leads[] = {0, 0xC0, 0xE0, 0xF0};
    int const tails = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    put(leads[tails] | point >> 6 * tails);
    for (int shift = 6 * (tails - 1); shift >= 0; shift -= 6)
        put(0x80 | (point >> shift & 0x3F));
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
        if (isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1]))
            appendUtf8(text, 0x10000u + ((unit & 0x3FFu) << 10) + (units[++i] & 0x3FFu));
        else if (isEscapedByte(unit))
            text += static_cast<char>(unit - s_escapeBase);
        else
            appendUtf8(text, unit);
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
    : m_units(std::move(other.m_units)), m_utf8(other.m_utf8.load(std::memory_order_relaxed))
{
    other.m_utf8.store(nullptr, std::memory_order_relaxed);
}

I18NString& I18NString::operator=(I18NString const& other)
{
    m_units = other.m_units;
    changed();
    return *this;
}

I18NString& I18NString::operator=(I18NString&& other) noexcept
{
    m_units = std::move(other.m_units);
    changed();
    other.changed();
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
    I18NString result;
    result.m_units = m_units.substr(clamp(start), static_cast<std::size_t>(count));  // -1 becomes npos
    return result;
}

I18NString I18NString::substring(std::int32_t start, std::int32_t end) const
{
    std::size_t const from = clamp(start);
    I18NString result;
    result.m_units = m_units.substr(from, std::max(clamp(end), from) - from);
    return result;
}

std::int32_t I18NString::incrementOffset(std::int32_t offset) const
{
    std::size_t const from = clamp(offset);
    if (from >= m_units.size())
        return toOffset(from);
    bool const isPair =
        isHighSurrogate(m_units[from]) && from + 1 < m_units.size() && isLowSurrogate(m_units[from + 1]);
    return toOffset(from + (isPair ? 2 : 1));
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
    // No other thread reads a string while it is changed, so that relaxed access, which needs no bus lock,
    // suffices.
    delete m_utf8.load(std::memory_order_relaxed);
    m_utf8.store(nullptr, std::memory_order_relaxed);
}

std::size_t I18NString::clamp(std::int32_t offset) const
{
    return offset < 0 || static_cast<std::size_t>(offset) > m_units.size() ? m_units.size()
                                                                           : static_cast<std::size_t>(offset);
}

std::ostream& operator<<(std::ostream& stream, I18NString const& text)
{
    std::uint16_t const* const units = text.getExternalBuffer();
    std::size_t const count = static_cast<std::size_t>(text.size()) / sizeof *units - 1;
    return stream << encodeUtf8({units, units + count});  // c_str would end at a zero unit
}
