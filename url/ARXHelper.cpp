#include "url/ARXHelper.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "ARXResource/ARXI18NRes.h"
#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBWeb64.h"
#include "frame/ARXAssert.h"

namespace
{
std::size_t constexpr s_pieceUnits = 256;

// What a byte becomes, in four bytes, so that one store writes it.
struct ByteForm
{
    char m_text[3];
    std::uint8_t m_length;
};

using ByteForms = std::array<ByteForm, 256>;

constexpr bool isPassed(unsigned byte)
{
    bool const isLetter = (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z';
    bool const isDigit = byte >= '0' && byte <= '9';
    return isLetter || isDigit || byte == '(' || byte == ')' || byte == '*' || byte == '-' || byte == '.' ||
           byte == '_';
}

constexpr ByteForms makeForms(bool keepAscii)
{
    char const digits[] = "0123456789abcdef";
    ByteForms forms{};
    for (unsigned byte = 0; byte < forms.size(); ++byte)
    {
        if (byte < 0x80 && (keepAscii || isPassed(byte)))
            forms[byte] = {{static_cast<char>(byte)}, 1};
        else
            forms[byte] = {{'%', digits[byte >> 4], digits[byte & 0xF]}, 3};
    }
    if (!keepAscii)
        forms[' '] = {{'+'}, 1};
    return forms;
}

ByteForms constexpr s_encodedForms = makeForms(false);
ByteForms constexpr s_keptForms = makeForms(true);

// Writes the whole form; the next one overwrites what follows its text. Byte by byte, and with the room
// checked for each, long texts would take three times as long.
char* put(char* target, ByteForm const& form)
{
    std::memcpy(target, &form, sizeof form);
    return target + form.m_length;
}

// The UTF-8 bytes of one code unit from 0x80 up, a surrogate like any other.
char* putWideUnit(char* target, unsigned unit)
{
    if (unit < 0x800)
        target = put(target, s_encodedForms[0xC0 | unit >> 6]);
    else
    {
        target = put(target, s_encodedForms[0xE0 | unit >> 12]);
        target = put(target, s_encodedForms[0x80 | (unit >> 6 & 0x3F)]);
    }
    return put(target, s_encodedForms[0x80 | (unit & 0x3F)]);
}

// Returns the end of the text. target has room for nine bytes a unit and one more, which the last store
// writes.
char* putUnits(char* target, char const* source, std::size_t units, ByteForms const& forms)
{
    for (char const* const end = source + units * sizeof(std::uint16_t); source != end; source += 2)
    {
        std::uint16_t unit;
        std::memcpy(&unit, source, sizeof unit);  // source may be an odd address
        target = unit < 0x80 ? put(target, forms[unit]) : putWideUnit(target, unit);
    }
    return target;
}

void readSetting(int resource, I18NString& value)
{
    value = NEBConfigurationFactory::getInstance().getConfigurationValue(ARXI18NRes::getString(resource),
                                                                         nullptr);
}

void appendComponent(I18NString& target, I18NString const& component)
{
    std::int32_t const quotes = component.find(u' ') == -1 ? 0 : 1;
    target.append(u'"', quotes);
    target.append(component);
    target.append(u'"', quotes);
}
}  // namespace

ARXHelper::ARXHelper() = default;

ARXHelper::~ARXHelper() = default;

char* ARXHelper::createWeb64(NEBByteBuffer const& input)
{
    char* const text = new char[NEBWeb64EncodedSize(input.pcount(), 0)];
    NEBWeb64Encode(input.str(), input.pcount(), text, 0);
    return text;
}

void ARXHelper::urlEncode(void const* input, std::size_t size, NEBByteBuffer& output, bool keepAscii)
{
    if (size == 0)
    {
        output.reset();
        return;
    }
    NEB_ASSERT(input);

    std::size_t const units = size / sizeof(std::uint16_t);
    output.reserve(3 * units);
    output.reset();
    auto const* const source = static_cast<char const*>(input);
    ByteForms const& forms = keepAscii ? s_keptForms : s_encodedForms;
    // In pieces, because room for the longest text of all units at once would be nine bytes a unit.
    for (std::size_t done = 0; done < units; done += s_pieceUnits)
    {
        std::size_t const piece = std::min(units - done, s_pieceUnits);
        output.reserve(output.pcount() + 9 * piece + 1);
        char* const end = putUnits(output.str() + output.pcount(), source + 2 * done, piece, forms);
        output.setLength(static_cast<std::size_t>(end - output.str()));
    }
}

void ARXHelper::urlEncode(I18NString const& input, NEBByteBuffer& output, bool keepAscii)
{
    if (input.empty())
    {
        output.reset();
        return;
    }
    std::int32_t const size = input.size() - static_cast<std::int32_t>(sizeof(std::uint16_t));
    NEB_ASSERT(size >= 0);
    urlEncode(input.getExternalBuffer(), static_cast<std::size_t>(size), output, keepAscii);
}

void ARXHelper::removeLastComponentFromUrl(I18NString& url)
{
    std::int32_t const last = url.rfind(u'/', -1);
    if (last > 0)
        url = url.substring(0, url.incrementOffset(last));
}

void ARXHelper::getGatewayBasePath(I18NString& path, bool removeLastComponent)
{
    readSetting(ARXI18NRes::s_gatewaySetting, path);
    if (removeLastComponent)
        removeLastComponentFromUrl(path);
}

void ARXHelper::getBasePath(I18NString& path, bool removeLastComponent)
{
    getGatewayBasePath(path, removeLastComponent);
}

void ARXHelper::getExternalDispatcherBasePath(I18NString& path)
{
    readSetting(ARXI18NRes::s_dispatcherSetting, path);
}

void ARXHelper::fixCommandPath(I18NString& path)
{
    for (std::int32_t slash = path.find(u'/', 0); slash != -1; slash = path.find(u'/', slash))
        path.replace(slash, 1, u'\\', 1);

    I18NString result;
    std::int32_t start = 0;
    for (std::int32_t end = path.find(u'\\', 0); end != -1; end = path.find(u'\\', start))
    {
        appendComponent(result, path.substring(start, end));
        result.append(u'\\', 1);
        start = path.incrementOffset(end);
    }
    appendComponent(result, path.substr(start, -1));
    path = result;
}
