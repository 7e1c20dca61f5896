#include "Sessions.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <crypt.h>
#include <unistd.h>

#include "CryptoHandle.h"
#include "Text.h"

namespace
{
std::string const s_cookieName = "arxgate";
std::size_t constexpr s_randomBytes = 16;
std::size_t constexpr s_identifierSize = 40;  // the random bytes and the time of the end, in hexadecimal
std::size_t constexpr s_signatureSize = 64;
std::time_t constexpr s_seconds = 12 * 3600;

// HMAC under a key that the crypto interface derives from the key file for this service alone.
std::string sign(std::string const& identifier)
{
    CryptoHandle<ARXSimpleKRYHandleI> const handle(ARXKRYHandleFactory::createHandle(
        "<sessionConfigDocument><serviceID>ARXGATE</serviceID></sessionConfigDocument>",
        "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>"));
    char* data = nullptr;
    std::size_t size = 0;
    std::int32_t const status =
        handle->protectData(identifier.data(), identifier.size(), &data, &size, nullptr);
    CryptoMemory const owner(data, {handle.get()});
    if (status < 0 || 2 * size != s_signatureSize)
        throw std::runtime_error("a session can't be signed");
    return toHex(data, size);
}
}  // namespace

Sessions::Sessions(std::string const& usersFile)
{
    std::ifstream file(usersFile);
    for (std::string line; std::getline(file, line);)
    {
        if (line.empty() || line.front() == '#')
            continue;
        std::size_t const colon = line.find(":$");
        if (colon == std::string::npos)
            throw std::runtime_error(usersFile + ": a line is not USER:HASH");
        m_hashes[line.substr(0, colon)] = line.substr(colon + 1);
    }
    if (!file.eof())
        throw std::runtime_error(usersFile + ": can't be read");
}

// Also hashes for users that do not exist, so that the time doesn't tell who does.
bool Sessions::isPassword(std::string const& user, std::string const& password) const
{
    auto const found = m_hashes.find(user);
    std::string const expected = found != m_hashes.end() ? found->second : "$6$nobody";
    auto const memory = std::make_unique<crypt_data>();
    char const* const hash = ::crypt_r(password.c_str(), expected.c_str(), memory.get());
    return hash && isEqual(hash, expected);
}

std::string Sessions::begin()
{
    std::array<unsigned char, s_randomBytes> random{};
    if (::getentropy(random.data(), random.size()) != 0)
        throw std::system_error(errno, std::generic_category(), "no random bytes");
    std::array<char, 9> end{};
    std::snprintf(end.data(), end.size(), "%08llx",
                  static_cast<unsigned long long>(std::time(nullptr) + s_seconds));
    std::string const identifier = toHex(random.data(), random.size()) + end.data();
    return s_cookieName + "=" + identifier + sign(identifier) + "; Max-Age=" + std::to_string(s_seconds) +
           "; Path=/; HttpOnly; Secure; SameSite=Strict";
}

std::string Sessions::find(std::string const& cookies)
{
    std::string const value = findCookie(cookies, s_cookieName);
    if (value.size() != s_identifierSize + s_signatureSize)
        return "";
    std::string const identifier = value.substr(0, s_identifierSize);
    if (!isEqual(value.substr(s_identifierSize), sign(identifier)))
        return "";
    long long const end = std::stoll(identifier.substr(2 * s_randomBytes), nullptr, 16);
    return std::time(nullptr) < end ? identifier : "";
}
