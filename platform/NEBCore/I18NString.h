// A string of UTF-16 code units with conversion from and to UTF-8.
//
// Any bytes survive the conversion both ways: a byte that is not part of well-formed UTF-8 becomes the lone
// surrogate U+DC00 plus its value, and c_str turns that code unit into the byte again ("surrogateescape", PEP
// 383). c_str writes any other lone surrogate as the three bytes of its code point. Offsets and counts are in
// code units; -1 means up to the end, and an offset beyond the end counts as the end. Lack of memory raises
// std::bad_alloc.
//
// Many threads may read one string at once, c_str included; no other thread may use it during a change.
//
// Example:
//     I18NString path("/data/");
//     path.append(I18NString("Bericht.pdf"));
//     if (path.find(u'B') == 6)
//         path.erase(0, 6);
//     std::string const name = path.c_str();

#ifndef NEBCORE_I18NSTRING_H
#define NEBCORE_I18NSTRING_H

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API I18NString
{
public:
    I18NString() = default;
    // length in bytes; -1 means up to the terminator. A null text makes the empty string. encoding must be
    // null, which means UTF-8: any other raises NEBException. The last two arguments are reserved.
    I18NString(char const* text, char const* encoding = nullptr, std::int32_t length = -1, void* = nullptr,
               void* = nullptr);
    // An empty string with room for an external form of that many bytes; setTo fills it.
    I18NString(std::int32_t size, void*, void*);
    I18NString(I18NString const& other);
    I18NString(I18NString&& other) noexcept;
    I18NString& operator=(I18NString const& other);
    I18NString& operator=(I18NString&& other) noexcept;
    ~I18NString();

    // Copies size bytes of UTF-16 in the byte order of the machine. One zero unit at the end is the
    // terminator and not part of the text; an odd last byte is ignored.
    void setTo(void const* buffer, std::uint32_t size);

    // Terminated UTF-8 that lives until the string, or the one that it is moved into, is changed or
    // destroyed. The arguments are reserved.
    char const* c_str(void* = nullptr, void* = nullptr, void* = nullptr, void* = nullptr) const;
    // The code units and their terminator, size() bytes. Valid until the string is changed.
    std::uint16_t const* getExternalBuffer() const;
    // In bytes, including two of the terminator.
    std::int32_t size() const;
    bool empty() const { return m_units.empty(); }

    // The offset of the first match at or after start, or of the last at or before it; -1 if there is none.
    std::int32_t find(char16_t unit, std::int32_t start = 0) const;
    std::int32_t rfind(char16_t unit, std::int32_t start = -1) const;
    I18NString substr(std::int32_t start, std::int32_t count = -1) const;
    // From start up to, not including, end.
    I18NString substring(std::int32_t start, std::int32_t end) const;
    // The offset of the next character: two units further at a surrogate pair, otherwise one; at most the
    // end.
    std::int32_t incrementOffset(std::int32_t offset) const;

    void append(char16_t unit, std::int32_t count);
    void append(I18NString const& text);
    // Replaces length units at offset by count times unit.
    void replace(std::int32_t offset, std::int32_t length, char16_t unit, std::int32_t count);
    void erase(std::int32_t start, std::int32_t count);
    void remove();

    bool operator==(I18NString const& other) const { return m_units == other.m_units; }
    bool operator!=(I18NString const& other) const { return !(*this == other); }
    // By code units.
    bool operator<(I18NString const& other) const { return m_units < other.m_units; }

private:
    explicit I18NString(std::u16string units) : m_units(std::move(units)) {}
    void changed();
    std::size_t clamp(std::int32_t offset) const;

    std::u16string m_units;
    // What c_str returned; owned, null before its first call.
    mutable std::atomic<std::string*> m_utf8{nullptr};
};

// Writes the UTF-8 form.
NEBCORE_API std::ostream& operator<<(std::ostream& stream, I18NString const& text);

#endif
