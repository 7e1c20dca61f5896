#include <array>
#include <cstdio>
#include <memory>

#include "platform/KRYStarted.h"

namespace
{
std::string hex(std::string const& bytes)
{
    std::string text;
    for (char const byte : bytes)
    {
        std::array<char, 3> digits;
        std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(byte));
        text += digits.data();
    }
    return text;
}

// The last word that a command prints.
std::string outputOf(std::string const& command)
{
    std::unique_ptr<FILE, decltype(&pclose)> const pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 256> part;
    while (fgets(part.data(), part.size(), pipe.get()))
        text += part.data();
    text.erase(text.find_last_not_of('\n') + 1);
    return text.substr(text.rfind(' ') + 1);
}
}  // namespace

TEST_F(KRYStarted, SignatureIsWhatTheOpensslToolComputes)
{
    for (std::string const service : {"TALM", "another service"})
        for (std::string const& data : {std::string(), std::string("report.pdf"), std::string(1000, 'x')})
        {
            std::string const path = m_folder / "data";
            writeFile(path, data);
            std::string const expected =
                outputOf("key=$(openssl kdf -keylen 32 -kdfopt digest:SHA2-256 -kdfopt hexkey:" + hex(m_key) +
                         " -kdfopt salt:KRY-CSKHMAC-1 -kdfopt 'info:" + service +
                         "' HKDF | tr -d :); openssl dgst -sha256 -mac HMAC -macopt hexkey:$key " + path);
            KRYTestSession session(service);
            ASSERT_EQ(KRY_SUCCESS, session.sign());
            for (int again = 0; again < 2; ++again)
            {
                std::string digest;
                EXPECT_EQ(KRY_SUCCESS, session.protect(data, &digest));
                EXPECT_EQ(expected, hex(digest));
            }
        }
}
