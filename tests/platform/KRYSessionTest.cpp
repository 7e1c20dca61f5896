#include <array>
#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "platform/KRYStarted.h"

namespace
{
// What each function that takes a session answers to that token.
std::vector<std::int32_t> statusesFor(void* token)
{
    char* text = nullptr;
    char* details = nullptr;
    std::uint32_t size = 0;
    char name[] = "serviceID";
    std::vector<std::int32_t> const statuses = {
        KRY_SetInfo(token, "<setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>", nullptr),
        KRY_GetInfo(token, name, &text, nullptr),
        KRY_ProtectData(token, "", 0, &text, &size, nullptr),
        KRY_UnprotectData(token, nullptr, 0, &text, &size, nullptr),
        KRY_CryptoGetLastErrorDetails(token, nullptr, &details),
        KRY_CloseHandle(&token, nullptr, nullptr)};
    KRY_CryptoFree(details, nullptr);
    return statuses;
}

std::string hex(std::string const& bytes)
{
    std::string text;
    for (char const byte : bytes)
        for (int const digit : {byte >> 4 & 15, byte & 15})
            text += "0123456789abcdef"[digit];
    return text;
}

// The last word that a command prints.
std::string outputOf(std::string const& command)
{
    std::unique_ptr<FILE, decltype(&pclose)> const pipe(popen(command.c_str(), "r"), pclose);
    std::array<char, 1000> text{};
    std::string const line = fgets(text.data(), text.size(), pipe.get()) ? text.data() : "\n";
    return line.substr(line.rfind(' ') + 1, line.size() - line.rfind(' ') - 2);
}
}  // namespace

TEST_F(KRYStarted, SignatureIsWhatTheOpensslToolComputes)
{
    std::string const path = m_folder / "data";
    for (std::string const service : {"TALM", "another service"})
        for (std::string const& data : {std::string(), std::string("report.pdf"), std::string(1000, 'x')})
        {
            writeFile(path, data);
            std::string const expected =
                outputOf("key=$(openssl kdf -keylen 32 -kdfopt digest:SHA2-256 -kdfopt hexkey:" + hex(m_key) +
                         " -kdfopt salt:KRY-CSKHMAC-1 -kdfopt 'info:" + service +
                         "' HKDF | tr -d :); openssl dgst -sha256 -mac HMAC -macopt hexkey:$key " + path);
            KRYTestSession session(service);
            ASSERT_EQ(KRY_SUCCESS, session.sign());
            std::string digests;
            EXPECT_EQ(KRY_SUCCESS, session.protect(data, &digests));
            EXPECT_EQ(KRY_SUCCESS, session.protect(data, &digests));
            EXPECT_EQ(expected + expected, hex(digests));
        }
}

TEST_F(KRYStarted, NullStaleAndForeignSessionsAreRefused)
{
    KRYTestSession open;
    KRYTestSession closed;
    void* const stale = closed.get();
    EXPECT_EQ(KRY_SUCCESS, closed.close());
    EXPECT_EQ(nullptr, closed.get());
    KRYTestSession next;  // in the stale one's place
    auto const number = reinterpret_cast<std::uintptr_t>(open.get());
    for (std::uintptr_t const token :
         {std::uintptr_t{0}, reinterpret_cast<std::uintptr_t>(stale), reinterpret_cast<std::uintptr_t>(&open),
          std::uintptr_t{1}, ~std::uintptr_t{0}, number ^ 1, number + (std::uintptr_t{1} << 20),
          number << 1 >> 1})
        EXPECT_EQ(std::vector<std::int32_t>(6, KRY_ERROR_SESSION),
                  statusesFor(reinterpret_cast<void*>(token)))
            << token;
    EXPECT_EQ(KRY_SUCCESS, open.sign());
    EXPECT_EQ(KRY_SUCCESS, next.sign());
}

TEST_F(KRYStarted, MissingArgumentsAreRefused)
{
    KRYTestSession session("TALM");
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    void* const token = session.get();
    char* text = nullptr;
    std::uint32_t size = 0;
    char name[] = "serviceID";
    char unknown[] = "masterKey";
    std::vector<std::int32_t> const statuses = {
        KRY_PersistentInitialize(nullptr, "", nullptr, nullptr),
        KRY_CloseHandle(nullptr, nullptr, nullptr),
        KRY_GetInfo(token, nullptr, &text, nullptr),
        KRY_GetInfo(token, name, nullptr, nullptr),
        KRY_GetInfo(token, unknown, &text, nullptr),
        KRY_ProtectData(token, nullptr, 1, &text, &size, nullptr),
        KRY_ProtectData(token, "x", 1, nullptr, &size, nullptr),
        KRY_ProtectData(token, "x", 1, &text, nullptr, nullptr),
        KRY_UnprotectData(token, "x", 1, &text, &size, nullptr),
        KRY_CryptoGetLastErrorDetails(token, nullptr, nullptr),
    };
    EXPECT_EQ(std::vector<std::int32_t>(statuses.size(), KRY_ERROR_ARGUMENT), statuses);
    EXPECT_EQ(KRY_SUCCESS, KRY_GetInfo(token, name, &text, nullptr));
    EXPECT_EQ("TALM", taken(text));
}

TEST_F(KRYStarted, ManyThreadsSignAlikeUntilTheirSessionGoes)
{
    for (bool const reap : {false, true})
    {
        KRYTestSession shared;
        std::array<KRYTestSession, 8> owns;
        std::string expected;
        ASSERT_EQ(KRY_SUCCESS, shared.sign());
        ASSERT_EQ(KRY_SUCCESS, shared.protect("x", &expected));
        std::atomic<int> count{0};
        auto const work = [&, token = shared.get()](KRYTestSession& own)
        {
            own.sign();
            char* bytes = nullptr;
            std::uint32_t size = 0;
            std::int32_t status;
            while (KRY_SUCCEEDED(status = KRY_ProtectData(token, "x", 1, &bytes, &size, nullptr)))
            {
                EXPECT_EQ(expected, std::string(bytes, size));
                KRY_CryptoFree(bytes, nullptr);
                std::string digest;
                EXPECT_TRUE(own.protect("x", &digest) != KRY_SUCCESS || digest == expected);
                ++count;
            }
            EXPECT_EQ(KRY_ERROR_SESSION, status);
        };
        std::vector<std::thread> threads;
        for (KRYTestSession& own : owns)
            threads.emplace_back(work, std::ref(own));
        while (count < 2000)
            std::this_thread::yield();
        EXPECT_EQ(KRY_SUCCESS, reap ? stop(s_service) : shared.close());
        for (std::thread& thread : threads)
            thread.join();
    }
}
