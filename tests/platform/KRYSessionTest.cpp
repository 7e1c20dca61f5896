#include <array>
#include <atomic>
#include <vector>

#include "platform/KRYStarted.h"
#include "support/TemporaryFolder.h"
#include "support/Threads.h"

namespace
{
using Statuses = std::vector<std::int32_t>;

// What each function returns for that token.
Statuses statusesFor(void* token)
{
    char *text = nullptr, *details = nullptr, name[] = "serviceID";
    std::uint32_t size = 0;
    Statuses const statuses = {
        KRY_SetInfo(token, "<setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>", nullptr),
        KRY_GetInfo(token, name, &text, nullptr),
        KRY_ProtectData(token, "", 0, &text, &size, nullptr),
        KRY_UnprotectData(token, nullptr, 0, &text, &size, nullptr),
        KRY_CloseHandle(&token, nullptr, nullptr),
        token ? KRY_CryptoGetLastErrorDetails(token, nullptr, &details) : KRY_ERROR_SESSION};
    KRY_CryptoFree(details, nullptr);
    return statuses;
}
}  // namespace

TEST_F(KRYStarted, NullStaleAndForeignSessionsAreRefused)
{
    KRYTestSession open, closed;
    auto const number = reinterpret_cast<std::uintptr_t>(open.m_session);
    auto const stale = reinterpret_cast<std::uintptr_t>(closed.m_session);
    EXPECT_EQ(KRY_SUCCESS, closed.close());
    EXPECT_EQ(nullptr, closed.m_session);
    KRYTestSession next;  // in the stale one's place
    for (std::uintptr_t const token : {std::uintptr_t{0}, stale, reinterpret_cast<std::uintptr_t>(&open),
                                       std::uintptr_t{1}, ~std::uintptr_t{0}, number ^ 1})
        EXPECT_EQ(Statuses(6, KRY_ERROR_SESSION), statusesFor(reinterpret_cast<void*>(token))) << token;
    EXPECT_EQ(KRY_SUCCESS, open.sign());
    EXPECT_EQ(KRY_SUCCESS, next.sign());
}

TEST_F(KRYStarted, MissingArgumentsAreRefused)
{
    KRYTestSession session("TALM");
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    void* const token = session.m_session;
    char *text = nullptr, name[] = "serviceID", unknown[] = "masterKey";
    std::uint32_t size = 0;
    Statuses const statuses = {
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
    EXPECT_EQ(Statuses(statuses.size(), KRY_ERROR_ARGUMENT), statuses);
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
        auto const work = [&](int thread)
        {
            auto const number = static_cast<std::size_t>(thread);
            if (number == owns.size())
            {
                while (count < 2000)
                    std::this_thread::yield();
                void* token = shared.m_session;
                EXPECT_EQ(KRY_SUCCESS, reap ? stop(s_service) : KRY_CloseHandle(&token, nullptr, nullptr));
                return;
            }
            owns[number].sign();
            for (std::int32_t status = KRY_SUCCESS; status == KRY_SUCCESS; ++count)
            {
                std::string digest, ownDigest;
                status = shared.protect("x", &digest);
                EXPECT_TRUE(status == KRY_ERROR_SESSION || digest == expected);
                EXPECT_TRUE(owns[number].protect("x", &ownDigest) != KRY_SUCCESS || ownDigest == expected);
            }
        };
        onThreads(9, work);
    }
}
