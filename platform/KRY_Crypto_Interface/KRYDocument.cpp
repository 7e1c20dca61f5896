#include "KRY_Crypto_Interface/KRYDocument.h"

#include <algorithm>
#include <array>
#include <string>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::string_view s_declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>";
constexpr std::size_t s_serviceIDLimit = 255;  // what the derivation of keys takes is limited

enum Element : std::size_t
{
    serviceID,
    action,
    dataLocation,
    fileOutput,
    fileInput,
    elementCount
};
struct ElementTags
{
    std::string_view m_name;
    std::string_view m_end;
};
constexpr std::array<ElementTags, elementCount> s_elements{{{"serviceID", "</serviceID>"},
                                                            {"action", "</action>"},
                                                            {"dataLocation", "</dataLocation>"},
                                                            {"fileOutput", "</fileOutput>"},
                                                            {"fileInput", "</fileInput>"}}};
using Values = std::array<std::string_view, elementCount>;  // empty where the element is missing

struct SetUpRule
{
    std::string_view m_actionText;
    std::string_view m_dataLocation;
    KRYAction m_action;
    Element m_file;  // elementCount: no file
};
constexpr std::array<SetUpRule, 4> s_setUps{{{"CSKHMAC", "memory", KRYAction::sign, elementCount},
                                             {"CipherStream", "", KRYAction::cipher, fileOutput},
                                             {"DecipherStream", "", KRYAction::decipher, fileInput},
                                             {"", "file", KRYAction::finish, elementCount}}};

[[noreturn]] void refuse(std::string const& reason)
{
    throw KRYError(KRY_ERROR_DOCUMENT, "document refused: " + reason);
}

bool skip(std::string_view& rest, std::string_view expected)
{
    if (rest.substr(0, expected.size()) != expected)
        return false;
    rest.remove_prefix(expected.size());
    return true;
}

// Takes "<name>" or "</name>", where opening is "<" or "</".
bool skipTag(std::string_view& rest, std::string_view opening, std::string_view name)
{
    std::string_view after = rest;
    if (!skip(after, opening) || !skip(after, name) || !skip(after, ">"))
        return false;
    rest = after;
    return true;
}

bool isFile(Element element)
{
    return element == fileOutput || element == fileInput;
}

// The value of the element whose start tag was just taken; its end tag is taken too.
std::string_view readValue(std::string_view& rest, Element element)
{
    auto const& [name, endTag] = s_elements[element];
    std::size_t const end = isFile(element) ? rest.rfind(endTag) : rest.find(endTag);
    if (end == std::string_view::npos)
        refuse("element " + std::string(name) + " has no end");
    std::string_view const value = rest.substr(0, end);
    rest.remove_prefix(end + endTag.size());
    if (value.empty())
        refuse("element " + std::string(name) + " is empty");
    if (!isFile(element) && value.find_first_of("<>&") != std::string_view::npos)
        refuse("element " + std::string(name) + " holds markup");
    return value;
}

// Takes one element into values and tells which it was.
Element readElement(std::string_view& rest, Values& values)
{
    auto const found = std::find_if(s_elements.begin(), s_elements.end(),
                                    [&](ElementTags const& tags) { return skipTag(rest, "<", tags.m_name); });
    if (found == s_elements.end())
        refuse("it holds what is no known element");
    auto const element = static_cast<Element>(found - s_elements.begin());
    if (!values[element].empty())
        refuse("element " + std::string(found->m_name) + " stands twice");
    values[element] = readValue(rest, element);
    return element;
}

Values readValues(char const* text, std::string_view root)
{
    if (!text)
        refuse("there is none");
    std::string_view rest(text);
    skip(rest, s_declaration);
    if (!skipTag(rest, "<", root))
        refuse("its root is not " + std::string(root));
    Values values;
    bool behindFile = false;
    while (!skipTag(rest, "</", root))
    {
        if (behindFile)
            refuse("the name of its file is not the last in it");
        behindFile = isFile(readElement(rest, values));
    }
    if (!rest.empty())
        refuse("something follows its end");
    return values;
}

bool fits(SetUpRule const& rule, Values const& values)
{
    return values[action] == rule.m_actionText && values[dataLocation] == rule.m_dataLocation &&
           values[serviceID].empty() && values[fileOutput].empty() == (rule.m_file != fileOutput) &&
           values[fileInput].empty() == (rule.m_file != fileInput);
}
}  // namespace

std::string_view KRYDocument::readServiceID(char const* text, std::string_view root)
{
    Values const values = readValues(text, root);
    if (values[serviceID].empty())
        refuse("there is no service id");
    if (values[serviceID].size() > s_serviceIDLimit)
        refuse("its service id is too long");
    if (std::any_of(values.begin() + action, values.end(), [](auto value) { return !value.empty(); }))
        refuse("only a service id belongs there");
    return values[serviceID];
}

KRYSetUp KRYDocument::readSetUp(char const* text)
{
    Values const values = readValues(text, "setInfoDocument");
    auto const rule = std::find_if(s_setUps.begin(), s_setUps.end(),
                                   [&](SetUpRule const& each) { return fits(each, values); });
    if (rule == s_setUps.end())
    {
        bool const known =
            std::any_of(s_setUps.begin(), s_setUps.end(),
                        [&](SetUpRule const& each) { return each.m_actionText == values[action]; });
        refuse(known ? "its elements do not fit its action" : "its action is unknown");
    }
    return {rule->m_action, rule->m_file == elementCount ? std::string_view() : values[rule->m_file]};
}
