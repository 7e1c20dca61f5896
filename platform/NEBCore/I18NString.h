// A string of UTF-16 code units, built from and given out as UTF-8.
//
// Any bytes survive the way in and out: a byte that is no part of well-formed UTF-8 becomes the lone
// surrogate U+DC00 plus its value, and that code unit becomes the byte again in c_str (the "surrogateescape"
// rule of PEP 383). Any other lone surrogate is given out in the three bytes of its code point. Offsets and
// counts are code units; an offset or count of -1 means up to the end, and one behind the end is taken as the
// end.
//
// Many threads may read one string at once, c_str included; a change needs the string for itself.

#ifndef NEBCORE_I18NSTRING_H
#define NEBCORE_I18NSTRING_H

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API I18NString
{
public:
    I18NString() = default;
    // length in bytes; -1 means up to the terminator. A null text gives the empty string. encoding must be
    // null, for UTF-8: another one raises NEBException. The last two arguments are reserved.
    I18NString(char const* text, char const* encoding = nullptr, std::int32_t length = -1, void* = nullptr,
               void* = nullptr);
    // An empty string with room for an external form of that many bytes; setTo fills it.
    I18NString(std::int32_t size, void*, void*);
    I18NString(I18NString const& other);
    I18NString(I18NString&& other) noexcept;
    I18NString& operator=(I18NString const& other);
    I18NString& operator=(I18NString&& other) noexcept;
    ~I18NString();

    // Takes size bytes of UTF-16 in the byte order of the machine. One zero unit at the end is the terminator
    // and no part of the text; an odd last byte is ignored.
    void setTo(void const* buffer, std::uint32_t size);
    void setTo(char const* text);

    // Terminated UTF-8 that lives until the string is changed or destroyed. The arguments are reserved.
    char const* c_str(void* = nullptr, void* = nullptr, void* = nullptr, void* = nullptr) const;
    // The code units and their terminator, size() bytes, valid until the string is changed.
    std::uint16_t const* getExternalBuffer() const;
    // In bytes, the two of the terminator included.
    std::int32_t size() const;
    bool empty() const { return m_units.empty(); }

    // The offset of the first match at or behind start, or of the last at or before it; -1 for none.
    std::int32_t find(char16_t unit, std::int32_t start = 0) const;
    std::int32_t rfind(char16_t unit, std::int32_t start = -1) const;
    I18NString substr(std::int32_t start, std::int32_t count = -1) const;
    // From start up to, not including, end.
    I18NString substring(std::int32_t start, std::int32_t end) const;
    // The offset of the next character: two units on where a surrogate pair stands, and never behind the end.
    std::int32_t incrementOffset(std::int32_t offset) const;

    void append(char16_t unit, std::int32_t count);
    void append(I18NString const& text);
    // Puts count units in place of length units at offset.
    void replace(std::int32_t offset, std::int32_t length, char16_t unit, std::int32_t count);
    void erase(std::int32_t start, std::int32_t count);
    void remove();

    bool operator==(I18NString const& other) const { return m_units == other.m_units; }
    bool operator!=(I18NString const& other) const { return !(*this == other); }
    // By code units.
    bool operator<(I18NString const& other) const { return m_units < other.m_units; }

private:
    void changed();
    std::size_t clamp(std::int32_t offset) const;

    std::u16string m_units;
    mutable std::atomic<std::string*> m_utf8{nullptr};  // what c_str gave out; owned, null until asked for
};

// Writes the UTF-8 form.
NEBCORE_API std::ostream& operator<<(std::ostream& stream, I18NString const& text);

#endif
