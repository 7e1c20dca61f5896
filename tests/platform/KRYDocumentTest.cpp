#include "platform/KRYStarted.h"

namespace
{
struct DocumentCase
{
    char const* m_name;
    char const* m_document;
    char const* m_reason;
};

char const s_root[] = "it is not initializeDocument around one plain serviceID";
char const s_length[] = "its service id does not have 1 to 255 bytes";

DocumentCase const s_starts[] = {
    {"Null", nullptr, "it is null"},
    {"Empty", "", s_root},
    {"OtherRoot", "<terminateDocument><serviceID>S</serviceID></terminateDocument>", s_root},
    {"OtherDeclaration",
     "<?xml version=\"1.1\"?><initializeDocument><serviceID>S</serviceID></initializeDocument>", s_root},
    {"NoService", "<initializeDocument></initializeDocument>", s_root},
    {"EmptyService", "<initializeDocument><serviceID></serviceID></initializeDocument>", s_length},
    {"Markup", "<initializeDocument><serviceID>a&amp;b</serviceID></initializeDocument>", s_root},
    {"LineAfterTheEnd", "<initializeDocument><serviceID>S</serviceID></initializeDocument>\n", s_root},
};

char const s_elements[] = "its elements are none that set a session up";

DocumentCase const s_setUps[] = {
    {"OtherRoot", "<sessionConfigDocument><serviceID>S</serviceID></sessionConfigDocument>",
     "it is no setInfoDocument"},
    {"UnknownAction",
     "<setInfoDocument><action>Secret</action><dataLocation>memory</dataLocation></setInfoDocument>",
     s_elements},
    {"SignatureOfAFile",
     "<setInfoDocument><action>CSKHMAC</action><dataLocation>file</dataLocation></setInfoDocument>",
     s_elements},
    {"NoFileName",
     "<setInfoDocument><action>CipherStream</action><fileOutput></fileOutput></setInfoDocument>", s_elements},
    {"ActionAfterTheFile",
     "<setInfoDocument><fileOutput>x</fileOutput><action>CipherStream</action></setInfoDocument>",
     s_elements},
    {"OffsetOfAnOutput",
     "<setInfoDocument><action>CipherStream</action><fileOutput>x</fileOutput><offset>1</offset>"
     "</setInfoDocument>",
     s_elements},
    {"NegativeOffset",
     "<setInfoDocument><action>DecipherStream</action><fileInput>x</fileInput><offset>-1</offset>"
     "</setInfoDocument>",
     s_elements},
    {"OffsetBeyond64Bits",
     "<setInfoDocument><action>DecipherStream</action><fileInput>x</fileInput>"
     "<offset>18446744073709551616</offset></setInfoDocument>",
     s_elements},
};

}  // namespace

TEST_F(KRYStarted, RefusedStartsTellWhy)
{
    for (DocumentCase const& row : s_starts)
    {
        char* details = nullptr;
        EXPECT_EQ(KRY_ERROR_DOCUMENT, KRY_CryptoInitialize(row.m_document, nullptr, &details)) << row.m_name;
        EXPECT_EQ("document refused: " + std::string(row.m_reason), taken(details)) << row.m_name;
    }
}

TEST_F(KRYStarted, RefusedSetUpsChangeNothing)
{
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    for (DocumentCase const& row : s_setUps)
    {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(KRY_ERROR_DOCUMENT, KRY_SetInfo(session.m_session, row.m_document, nullptr));
        EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
        EXPECT_EQ("document refused: " + std::string(row.m_reason), session.lastFailure());
    }
}

TEST(KRYServiceID, HasAtMost255Bytes)
{
    std::string text;
    EXPECT_EQ(KRY_ERROR_DOCUMENT, start(element("serviceID", std::string(256, 'x')), &text));
    EXPECT_EQ("document refused: " + std::string(s_length), text);
}

TEST_F(KRYStarted, ServiceIDsAreASet)
{
    std::string const id = "<serviceID>B</serviceID>";
    std::string const document =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>" + element("initializeDocument", id);
    EXPECT_EQ(KRY_SUCCESS, KRY_CryptoInitialize(document.c_str(), nullptr, nullptr));
    EXPECT_EQ(KRY_SUCCESS, start(id));
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, stop(s_service));
    EXPECT_EQ(KRY_SUCCESS, session.sign()) << "B is still started";
    EXPECT_EQ(KRY_SUCCESS, stop(id));
    EXPECT_EQ(KRY_ERROR_SESSION, session.sign()) << "the last stop closes sessions";
    EXPECT_EQ(KRY_ERROR_STATE, stop(id));

    void* late = &late;
    std::string const config = element("sessionConfigDocument", id);
    EXPECT_EQ(KRY_ERROR_STATE, KRY_PersistentInitialize(&late, config.c_str(), nullptr, nullptr));
    EXPECT_EQ(nullptr, late);
}

TEST_F(KRYStarted, ANullSessionTellsWhyTheLastStartFailed)
{
    auto const lastStartFailure = []
    {
        char* details = nullptr;
        EXPECT_EQ(KRY_SUCCESS, KRY_CryptoGetLastErrorDetails(nullptr, nullptr, &details));
        return taken(details);
    };
    std::string text;
    EXPECT_EQ(KRY_ERROR_DOCUMENT, start("", &text));
    EXPECT_EQ(text, lastStartFailure());
    EXPECT_EQ(KRY_SUCCESS, start(s_service));
    EXPECT_EQ("", lastStartFailure());
}
