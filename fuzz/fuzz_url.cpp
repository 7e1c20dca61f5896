// The percent encoding is that of a second, slower encoder; Web64 text gives its bytes back and has one
// spelling only; cutting URLs and quoting command lines agree with models of them.

#include <memory>
#include <vector>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBWeb64.h"
#include "fuzz/Fuzz.h"
#include "url/ARXHelper.h"

namespace
{
std::string escaped(unsigned byte)
{
    char text[8];  // g++ sees a unit where there is a byte
    std::snprintf(text, sizeof text, "%%%02x", byte);
    return text;
}

std::string modelUrlEncode(std::u16string const& units, bool keepAscii)
{
    std::string text;
    std::string const passed = "()*-._";
    for (unsigned const unit : units)
    {
        bool const isAscii = unit < 0x80;
        bool const isPassed =
            isAscii && (std::isalnum(static_cast<int>(unit)) != 0 ||
                        (unit != 0 && passed.find(static_cast<char>(unit)) != std::string::npos));
        if (isAscii && (keepAscii || isPassed))
            text += static_cast<char>(unit);
        else if (unit == ' ')
            text += '+';
        else if (isAscii)
            text += escaped(unit);
        else if (unit < 0x800)
            text += escaped(0xC0 + unit / 64) + escaped(0x80 + unit % 64);
        else
            text += escaped(0xE0 + unit / 4096) + escaped(0x80 + unit / 64 % 64) + escaped(0x80 + unit % 64);
    }
    return text;
}

void checkUrlEncode(std::string const& bytes, bool keepAscii)
{
    NEBByteBuffer output(1, 1);
    output << "before";
    ARXHelper::urlEncode(bytes.data(), bytes.size(), output, keepAscii);
    mustHold(std::string(output.str(), output.pcount()) == modelUrlEncode(unitsOf(bytes), keepAscii),
             "the percent encoding is the model's");
}

void checkWeb64(std::string const& bytes)
{
    NEBByteBuffer input(1, 1);
    input.appendChars(bytes.data(), bytes.size());
    std::unique_ptr<char[]> const text(ARXHelper::createWeb64(input));
    std::string decoded;
    mustHold(NEBWeb64Decode(text.get(), std::char_traits<char>::length(text.get()), decoded),
             "Web64 text can be decoded");
    mustHold(decoded == bytes, "Web64 text gives its bytes back");

    bool const isWeb64 = NEBWeb64Decode(bytes.data(), bytes.size(), decoded);
    mustHold(isWeb64 || decoded.empty(), "what is no Web64 text gives no bytes");
    if (!isWeb64)
        return;
    input.reset();
    input.appendChars(decoded.data(), decoded.size());
    std::unique_ptr<char[]> const again(ARXHelper::createWeb64(input));
    mustHold(again.get() == bytes, "Web64 text has one spelling");
}

std::u16string unitsOf(I18NString const& text)
{
    auto const* const units = text.getExternalBuffer();
    return text.empty() ? std::u16string() : std::u16string(units, units + text.size() / 2 - 1);
}

std::u16string modelCommandPath(std::u16string const& path)
{
    std::u16string result, component;
    for (char16_t const unit : path + u'/')
    {
        if (unit != u'/' && unit != u'\\')
        {
            component += unit;
            continue;
        }
        bool const isQuoted = component.find(u' ') != std::u16string::npos;
        result += (isQuoted ? u'"' + component + u'"' : component) + u'\\';
        component.clear();
    }
    result.pop_back();
    return result;
}

void checkTexts(std::string const& bytes)
{
    I18NString text;
    text.setTo(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    std::u16string const units = unitsOf(text);
    I18NString url = text;
    ARXHelper::removeLastComponentFromUrl(url);
    std::size_t const slash = units.rfind(u'/');
    bool const isCut = slash != std::u16string::npos && slash != 0;
    mustHold(unitsOf(url) == (isCut ? units.substr(0, slash + 1) : units), "URLs are cut after the last /");

    ARXHelper::fixCommandPath(text);
    mustHold(unitsOf(text) == modelCommandPath(units), "command paths are the model's");
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    FuzzInput input(data, size);
    std::string const bytes = input.takeRest();
    checkUrlEncode(bytes, false);
    checkUrlEncode(bytes, true);
    checkWeb64(bytes);
    checkTexts(bytes);
    return 0;
}
