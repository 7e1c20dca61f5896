#include "Sessions.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <fstream>
#include <stdexcept>

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include "Text.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleI.h"

namespace
{
std::string const s_cookieName = "arxgate";
std::size_t constexpr s_randomBytes = 16;
std::size_t constexpr s_identifierSize = 40;  // the random bytes and the time of the end, in hexadecimal
std::size_t constexpr s_signatureSize = 64;
std::time_t constexpr s_seconds = 12 * 3600;

std::string makeRandom()
{
    std::array<unsigned char, s_randomBytes> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
        throw std::runtime_error("no random bytes");
    return toHex(bytes.data(), bytes.size());
}

std::string hash(std::string const& salt, std::string const& password)
{
    std::array<unsigned char, 32> bytes{};
    auto const* const saltBytes = reinterpret_cast<unsigned char const*>(salt.data());
    if (EVP_PBE_scrypt(password.data(), password.size(), saltBytes, salt.size(), 16384, 8, 1, 0, bytes.data(),
                       bytes.size()) != 1)
        throw std::runtime_error("scrypt failed");
    return toHex(bytes.data(), bytes.size());
}

// HMAC under a key that the crypto interface derives from the key file for this service alone.
std::string sign(std::string const& identifier)
{
    ARXSimpleKRYHandleI* const handle = ARXKRYHandleFactory::createHandle(
        "<sessionConfigDocument><serviceID>ARXGATE</serviceID></sessionConfigDocument>",
        "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>");
    char* data = nullptr;
    std::size_t size = 0;
    std::int32_t const status =
        handle->protectData(identifier.data(), identifier.size(), &data, &size, nullptr);
    std::string const signature = status >= 0 ? toHex(data, size) : "";
    handle->cryptoFree(data, nullptr);
    ARXKRYHandleFactory::destroyHandle(handle);
    if (signature.size() != s_signatureSize)
        throw std::runtime_error("a session can't be signed");
    return signature;
}

}  // namespace

std::string makeUserLine(std::string const& user, std::string const& password)
{
    std::string const salt = makeRandom();
    return user + ":" + salt + ":" + hash(salt, password);
}

Sessions::Sessions(std::string const& usersFile)
{
    std::ifstream file(usersFile);
    for (std::string line; std::getline(file, line);)
    {
        if (line.empty() || line.front() == '#')
            continue;
        std::size_t const colon = line.find(':');
        if (colon == std::string::npos || line.find(':', colon + 1) != colon + 1 + 2 * s_randomBytes)
            throw std::runtime_error(usersFile + ": a line is not user:salt:hash");
        m_proofs[line.substr(0, colon)] = line.substr(colon + 1);
    }
    if (!file.eof())
        throw std::runtime_error(usersFile + ": can't be read");
}

// Also hashes for users that do not exist, so that the time doesn't tell who does.
bool Sessions::isPassword(std::string const& user, std::string const& password)
{
    auto const found = m_proofs.find(user);
    std::string const proof =
        found != m_proofs.end() ? found->second : std::string(2 * s_randomBytes, '0') + ":";
    std::string const salt = proof.substr(0, 2 * s_randomBytes);
    std::lock_guard<std::mutex> const guard(m_hashing);
    return isEqual(salt + ":" + hash(salt, password), proof);
}

std::string Sessions::begin()
{
    auto const end = static_cast<unsigned long>(std::time(nullptr) + s_seconds);
    std::array<char, 9> endText{};
    std::snprintf(endText.data(), endText.size(), "%08lx", end);
    std::string const identifier = makeRandom() + endText.data();
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
    std::time_t const end = std::stol(identifier.substr(2 * s_randomBytes), nullptr, 16);
    return std::time(nullptr) < end ? identifier : "";
}
