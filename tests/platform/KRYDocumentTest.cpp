#include "platform/KRYStarted.h"

namespace
{
struct DocumentCase
{
    char const* m_content;
    char const* m_reason;
};

char const s_unfit[] = "its elements do not fit its action";

DocumentCase const s_startCases[] = {
    {"", "there is no service id"},
    {"<serviceID></serviceID>", "element serviceID is empty"},
    {"<serviceID>S</serviceID><serviceID>T</serviceID>", "element serviceID stands twice"},
    {"<serviceID>a&amp;b</serviceID>", "element serviceID holds markup"},
    {"<serviceID>S", "element serviceID has no end"},
    {"<secret>S</secret>", "it holds what is no known element"},
    {"<serviceID a=\"1\">S</serviceID>", "it holds what is no known element"},
    {" <serviceID>S</serviceID>", "it holds what is no known element"},
    {"<serviceID>S</serviceID><action>CSKHMAC</action>", "only a service id belongs there"},
    {"<serviceID>S</serviceID></initializeDocument>\n", "something follows its end"},
};

DocumentCase const s_setUpCases[] = {
    {"", s_unfit},
    {"<action>Secret</action><dataLocation>memory</dataLocation>", "its action is unknown"},
    {"<action>CSKHMAC</action><action>CSKHMAC</action>", "element action stands twice"},
    {"<action>CSKHMAC</action><dataLocation>file</dataLocation>", s_unfit},
    {"<action>CSKHMAC</action>", s_unfit},
    {"<serviceID>S</serviceID><action>CSKHMAC</action><dataLocation>memory</dataLocation>", s_unfit},
    {"<dataLocation>memory</dataLocation>", s_unfit},
    {"<action>CipherStream</action>", s_unfit},
    {"<action>CipherStream</action><fileInput>x</fileInput>", s_unfit},
    {"<action>DecipherStream</action><fileOutput>x</fileOutput>", s_unfit},
    {"<action>CipherStream</action><fileOutput></fileOutput>", "element fileOutput is empty"},
    {"<fileOutput>x</fileOutput><action>CipherStream</action>", "the name of its file is not the last in it"},
};
}  // namespace

TEST(KRYDocument, OfAStartIsTakenStrictly)
{
    std::string text;
    for (DocumentCase const& row : s_startCases)
    {
        EXPECT_EQ(KRY_ERROR_DOCUMENT, start(row.m_content, &text)) << row.m_content;
        EXPECT_EQ("document refused: " + std::string(row.m_reason), text) << row.m_content;
    }
    EXPECT_EQ(KRY_ERROR_DOCUMENT, start("<serviceID>" + std::string(256, 'x') + "</serviceID>"));
    char const* const documents[] = {nullptr, "",
                                     "<terminateDocument><serviceID>S</serviceID></terminateDocument>",
                                     "<?xml version=\"1.1\"?><initializeDocument><serviceID>S</serviceID>"
                                     "</initializeDocument>"};
    for (char const* const document : documents)
        EXPECT_EQ(KRY_ERROR_DOCUMENT, KRY_CryptoInitialize(document, nullptr, nullptr));
}

TEST_F(KRYStarted, RefusedSetUpsChangeNothing)
{
    KRYTestSession session("TALM");
    EXPECT_EQ(KRY_ERROR_STATE, session.protect("data"));
    EXPECT_EQ("the session is not set up to protect data", session.lastFailure());
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    for (DocumentCase const& row : s_setUpCases)
    {
        EXPECT_EQ(KRY_ERROR_DOCUMENT, session.setUp(row.m_content)) << row.m_content;
        EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
        EXPECT_EQ("document refused: " + std::string(row.m_reason), session.lastFailure()) << row.m_content;
    }
}

TEST_F(KRYStarted, ServiceIDsAreASet)
{
    char const* const document =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
        "<initializeDocument><serviceID>B</serviceID></initializeDocument>";
    EXPECT_EQ(KRY_SUCCESS, KRY_CryptoInitialize(document, nullptr, nullptr));
    EXPECT_EQ(KRY_SUCCESS, start("<serviceID>B</serviceID>"));
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, stop(s_service));
    EXPECT_EQ(KRY_SUCCESS, session.sign()) << "B is started still";
    EXPECT_EQ(KRY_SUCCESS, stop("<serviceID>B</serviceID>"));
    EXPECT_EQ(KRY_ERROR_SESSION, session.sign()) << "the last stop closes sessions";
    EXPECT_EQ(KRY_ERROR_STATE, stop("<serviceID>B</serviceID>"));

    void* late = &late;
    EXPECT_EQ(KRY_ERROR_STATE,
              KRY_PersistentInitialize(
                  &late, "<sessionConfigDocument><serviceID>S</serviceID></sessionConfigDocument>", nullptr,
                  nullptr));
    EXPECT_EQ(nullptr, late);
}
