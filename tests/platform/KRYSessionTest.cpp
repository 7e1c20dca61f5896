#include <vector>

#include "platform/KRYStarted.h"

namespace
{
using Statuses = std::vector<std::int32_t>;

// What each function returns for that token.
Statuses statusesFor(void* token)
{
    char *text = nullptr, name[] = "serviceID";
    std::uint32_t size = 0;
    return {
        KRY_SetInfo(token, "<setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>", nullptr),
        KRY_GetInfo(token, name, &text, nullptr),
        KRY_ProtectData(token, "", 0, &text, &size, nullptr),
        KRY_UnprotectData(token, nullptr, 0, &text, &size, nullptr),
        KRY_CloseHandle(&token, nullptr, nullptr),
    };
}
}  // namespace

TEST_F(KRYStarted, OnlyOpenSessionsAreTaken)
{
    KRYTestSession open, closed;
    void* const stale = closed.m_session;
    EXPECT_EQ(KRY_SUCCESS, closed.close());
    KRYTestSession next;  // in the stale one's place
    for (void* const token : {static_cast<void*>(nullptr), stale, static_cast<void*>(&open)})
        EXPECT_EQ(Statuses(5, KRY_ERROR_SESSION), statusesFor(token)) << token;
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
    EXPECT_EQ("TALM", session.getInfo("serviceID"));
}

TEST_F(KRYStarted, ARefusedStartTellsWhyUntilTheNextOne)
{
    char* details = nullptr;
    EXPECT_EQ(KRY_ERROR_DOCUMENT, KRY_CryptoInitialize(nullptr, nullptr, &details));
    EXPECT_EQ("document refused: it is null", taken(details));
    EXPECT_EQ("document refused: it is null", lastFailure(nullptr));
    EXPECT_EQ("", start());
    EXPECT_EQ("", lastFailure(nullptr));
}

TEST_F(KRYStarted, ARefusedSetUpChangesNothing)
{
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ(KRY_ERROR_DOCUMENT, session.setUp("<action>Secret</action>"));
    EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
    EXPECT_EQ("document refused: its elements are none that set a session up",
              lastFailure(session.m_session));
}

TEST_F(KRYStarted, ServiceIDsAreASet)
{
    EXPECT_EQ("", start("B"));
    EXPECT_EQ("", start("B"));
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, stop());
    EXPECT_EQ(KRY_SUCCESS, session.sign()) << "B is still started";
    EXPECT_EQ(KRY_SUCCESS, stop("B"));
    EXPECT_EQ(KRY_ERROR_SESSION, session.sign()) << "the last stop closes sessions";
    EXPECT_EQ(KRY_ERROR_STATE, stop("B"));

    std::string const config = serviceDocument("sessionConfigDocument", "B");
    EXPECT_EQ(KRY_ERROR_STATE,
              KRY_PersistentInitialize(&session.m_session, config.c_str(), nullptr, nullptr));
    EXPECT_EQ(nullptr, session.m_session);
}
