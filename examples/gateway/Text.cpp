#include "Text.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <exception>

#include <openssl/crypto.h>

#include "NEBCore/NEBThrowable.h"

std::string toHex(void const* data, std::size_t size)
{
    auto const* const bytes = static_cast<unsigned char const*>(data);
    std::string text;
    for (std::size_t i = 0; i < size; ++i)
    {
        text += "0123456789abcdef"[bytes[i] >> 4];
        text += "0123456789abcdef"[bytes[i] & 15];
    }
    return text;
}

std::string percentEncode(std::string const& text)
{
    std::string encoded;
    for (char const c : text)
    {
        bool const plain = std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("-._~", c);
        encoded += plain ? std::string(1, c) : "%" + toHex(&c, 1);
    }
    return encoded;
}

std::string findCookie(std::string const& cookies, std::string const& name)
{
    std::size_t const begin = ("; " + cookies).find("; " + name + "=");
    if (begin == std::string::npos)
        return "";
    std::size_t const value = begin + name.size() + 1;
    return cookies.substr(value, cookies.find(';', value) - value);
}

bool isEqual(std::string const& left, std::string const& right)
{
    return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

std::string formatTime(char const* format, std::time_t time)
{
    std::tm fields{};
    ::gmtime_r(&time, &fields);
    std::array<char, 64> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &fields)};
}

void printCurrentException(std::string const& where)
{
    std::string reason = "an exception of unknown type";
    try
    {
        throw;
    }
    catch (NEBThrowable& error)
    {
        reason = error.toString();
    }
    catch (std::exception const& error)
    {
        reason = error.what();
    }
    catch (...)  // its type tells nothing
    {
    }
    std::fprintf(stderr, "arxgate: %s: %s\n", where.c_str(), reason.c_str());
}
