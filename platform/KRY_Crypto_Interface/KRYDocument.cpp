#include "KRY_Crypto_Interface/KRYDocument.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::string_view s_declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>";
constexpr std::size_t s_serviceIDLimit = 255;  // the derivation of keys takes no text of any length

[[noreturn]] void refuse(std::string const& reason)
{
    throw KRYError(KRY_ERROR_DOCUMENT, "document refused: " + reason);
}

bool takeFront(std::string_view& text, std::string_view front)
{
    bool const isThere = text.substr(0, front.size()) == front;
    text.remove_prefix(isThere ? front.size() : 0);
    return isThere;
}

bool takeBack(std::string_view& text, std::string_view back)
{
    bool const isThere = text.size() >= back.size() && text.substr(text.size() - back.size()) == back;
    text.remove_suffix(isThere ? back.size() : 0);
    return isThere;
}

std::string_view withoutDeclaration(char const* text)
{
    if (!text)
        refuse("it is null");
    std::string_view rest(text);
    takeFront(rest, s_declaration);
    return rest;
}

// The text between front and back, or nothing if text has another form.
std::string_view between(std::string_view text, std::string_view front, std::string_view back)
{
    return takeFront(text, front) && takeBack(text, back) ? text : std::string_view();
}

// Takes `<offset>N</offset>` off the end of text; leaves both as they are if it has another end.
void takeOffset(std::string_view& text, std::uint64_t& offset)
{
    std::size_t const start = std::min(text.rfind("<offset>"), text.size());
    std::string_view const digits = between(text.substr(start), "<offset>", "</offset>");
    char const* const end = digits.data() + digits.size();
    std::uint64_t number = 0;
    auto const [rest, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc() || rest != end)
        return;
    text = text.substr(0, start);
    offset = number;
}
}  // namespace

std::string_view readServiceID(char const* text, std::string_view root)
{
    std::string_view id = withoutDeclaration(text);
    // Piece by piece, since the last stop must not need memory.
    bool const fits = takeFront(id, "<") && takeFront(id, root) && takeFront(id, "><serviceID>") &&
                      takeBack(id, ">") && takeBack(id, root) && takeBack(id, "</serviceID></");
    if (!fits || id.find_first_of("<>&") != std::string_view::npos)
        refuse("it is not " + std::string(root) + " around one plain serviceID");
    if (id.empty() || id.size() > s_serviceIDLimit)
        refuse("its service id does not have 1 to 255 bytes");
    return id;
}

KRYSetUp readSetUp(char const* text)
{
    std::string_view rest = withoutDeclaration(text);
    if (!takeFront(rest, "<setInfoDocument>") || !takeBack(rest, "</setInfoDocument>"))
        refuse("it is no setInfoDocument");
    if (rest == "<action>CSKHMAC</action><dataLocation>memory</dataLocation>" ||
        rest == "<dataLocation>memory</dataLocation><action>CSKHMAC</action>")
        return {KRYAction::sign, {}, 0};
    if (rest == "<dataLocation>file</dataLocation>")
        return {KRYAction::finish, {}, 0};
    std::string_view name = between(rest, "<action>CipherStream</action><fileOutput>", "</fileOutput>");
    if (!name.empty())
        return {KRYAction::cipher, name, 0};
    std::uint64_t offset = 0;
    takeOffset(rest, offset);
    name = between(rest, "<action>DecipherStream</action><fileInput>", "</fileInput>");
    if (!name.empty())
        return {KRYAction::decipher, name, offset};
    refuse("its elements are none that set a session up");
}
