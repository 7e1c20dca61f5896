#include "Text.h"

#include <string_view>

namespace
{
// Of a character of one to four bytes (RFC 3629).
struct Character
{
    std::size_t m_size;  // 1 also for a byte that belongs to no character
    bool m_isValid;
    bool m_isControl;
};

Character readCharacter(std::string_view text)
{
    unsigned const lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80)
        return {1, true, lead < 0x20 || lead == 0x7F};
    std::size_t const size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size)
        return {1, false, false};
    unsigned code = lead & (0x7Fu >> size);
    for (std::size_t i = 1; i < size; ++i)
    {
        unsigned const byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80)
            return {1, false, false};
        code = code << 6 | (byte & 0x3F);
    }
    unsigned constexpr smallest[] = {0x80, 0x800, 0x10000};
    if (code < smallest[size - 2] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return {1, false, false};
    return {size, true, code < 0xA0};
}

// Calls visit with the bytes of each character and what it is.
template <class Visit>
void visitCharacters(std::string_view text, Visit const& visit)
{
    while (!text.empty())
    {
        Character const character = readCharacter(text);
        visit(text.substr(0, character.m_size), character);
        text.remove_prefix(character.m_size);
    }
}

bool isUtf8(std::string_view text)
{
    bool isValid = true;
    visitCharacters(text, [&](std::string_view, Character const& each) { isValid &= each.m_isValid; });
    return isValid;
}

std::string hex(std::string_view bytes, char const* before)
{
    char const* const digits = "0123456789abcdef";
    std::string text;
    for (char const c : bytes)
    {
        auto const byte = static_cast<unsigned char>(c);
        text += before;
        text += {digits[byte >> 4], digits[byte & 0xF]};
    }
    return text;
}

std::string jsonCharacter(std::string_view bytes, Character const& character)
{
    if (!character.m_isValid)
        return "\xEF\xBF\xBD";
    if (bytes[0] == '"' || bytes[0] == '\\')
        return std::string("\\").append(bytes);
    if (character.m_isControl)  // U+0080 to U+009F have their code in the second byte
        return "\\u00" + hex(bytes.substr(bytes.size() - 1), "");
    return std::string(bytes);
}
}  // namespace

std::string printable(std::string const& text)
{
    std::string shown;
    visitCharacters(text,
                    [&](std::string_view bytes, Character const& each)
                    {
                        bool const isSafe = each.m_isValid && !each.m_isControl;
                        shown += isSafe ? std::string(bytes) : hex(bytes, "\\x");
                    });
    return shown;
}

std::string jsonText(std::string const& text)
{
    std::string quoted = "\"";
    visitCharacters(
        text, [&](std::string_view bytes, Character const& each) { quoted += jsonCharacter(bytes, each); });
    return quoted + '"';
}

std::string jsonMember(std::string const& key, std::string const& text)
{
    std::string const member = jsonText(key) + ':' + jsonText(text);
    return isUtf8(text) ? member : member + ',' + jsonText(key + "Hex") + ":\"" + hex(text, "") + '"';
}
