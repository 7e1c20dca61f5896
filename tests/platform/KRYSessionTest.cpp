#include <atomic>
#include <thread>
#include <vector>

#include "platform/KRYStarted.h"

namespace
{
std::int32_t close(void* token)
{
    return KRY_CloseHandle(&token, nullptr, nullptr);
}

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
        close(token)};
    EXPECT_EQ(nullptr, text);
    KRY_CryptoFree(details, nullptr);
    return statuses;
}
}  // namespace

TEST_F(KRYStarted, NullStaleAndForeignSessionsAreRefused)
{
    KRYTestSession open("TALM");
    void* stale = nullptr;
    {
        KRYTestSession closed("TALM");
        stale = closed.get();
        EXPECT_EQ(KRY_SUCCESS, closed.close());
        EXPECT_EQ(nullptr, closed.get());
    }
    KRYTestSession next("TALM");  // in the stale one's place
    auto const number = reinterpret_cast<std::uintptr_t>(open.get());
    auto const sessionAt = [](std::uintptr_t value) { return reinterpret_cast<void*>(value); };
    void* const tokens[] = {nullptr,
                            stale,
                            &stale,
                            sessionAt(1),
                            sessionAt(~std::uintptr_t{0}),
                            sessionAt(number ^ 1),
                            sessionAt(number + (std::uintptr_t{1} << 20)),
                            sessionAt(number & ~(std::uintptr_t{1} << 63))};
    for (void* const token : tokens)
        EXPECT_EQ(std::vector<std::int32_t>(6, KRY_ERROR_SESSION), statusesFor(token)) << token;
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
    std::int32_t const statuses[] = {
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
    for (std::int32_t const status : statuses)
        EXPECT_EQ(KRY_ERROR_ARGUMENT, status) << &status - statuses;
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(KRY_SUCCESS, KRY_CryptoFree(nullptr, nullptr));

    EXPECT_EQ(KRY_SUCCESS, KRY_GetInfo(token, name, &text, nullptr));
    EXPECT_STREQ("TALM", text);
    KRY_CryptoFree(text, nullptr);
}

TEST_F(KRYStarted, LastFailureStaysUntilTheNext)
{
    KRYTestSession session("TALM");
    EXPECT_EQ("", session.lastFailure());
    EXPECT_EQ(KRY_ERROR_STATE, session.protect("data"));
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ("the session is not set up to protect data", session.lastFailure());
    std::string out;
    EXPECT_EQ(KRY_ERROR_STATE, session.read(out));
    EXPECT_EQ("the session is not set up to read a file", session.lastFailure());
}

TEST_F(KRYStarted, ManyThreadsSignAlikeInSharedAndOwnSessions)
{
    KRYTestSession shared("TALM");
    ASSERT_EQ(KRY_SUCCESS, shared.sign());
    auto const digests = [](KRYTestSession& session)
    {
        std::string all;
        for (int i = 0; i < 500; ++i)
            EXPECT_EQ(KRY_SUCCESS, session.protect(std::to_string(i), &all));
        return all;
    };
    std::string const expected = digests(shared);
    ASSERT_EQ(500u * 32, expected.size());
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back(
            [&]
            {
                EXPECT_EQ(expected, digests(shared));
                KRYTestSession own("TALM");
                EXPECT_EQ(KRY_SUCCESS, own.sign());
                EXPECT_EQ(expected, digests(own));
            });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(KRYStarted, SessionsInUseCanBeClosedAndReaped)
{
    for (bool const reap : {false, true})
    {
        KRYTestSession session("TALM");
        ASSERT_EQ(KRY_SUCCESS, session.sign());
        std::atomic<int> signed_{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back(
                [&, token = session.get()]
                {
                    char* digest = nullptr;
                    std::uint32_t size = 0;
                    std::int32_t status;
                    while (KRY_SUCCEEDED(status = KRY_ProtectData(token, "x", 1, &digest, &size, nullptr)))
                    {
                        KRY_CryptoFree(digest, nullptr);
                        ++signed_;
                    }
                    EXPECT_EQ(KRY_ERROR_SESSION, status);
                });
        while (signed_ < 100)
            std::this_thread::yield();
        if (reap)
            restart();
        else
            EXPECT_EQ(KRY_SUCCESS, session.close());
        for (std::thread& thread : threads)
            thread.join();
    }
}
