#include "platform/KRYStarted.h"

namespace
{
struct DocumentCase
{
    char const* m_name;
    char const* m_document;
    char const* m_reason;
};

std::string nameOf(testing::TestParamInfo<DocumentCase> const& info)
{
    return info.param.m_name;
}

std::string const s_longID(256, 'x');
std::string const s_longDocument =
    "<initializeDocument><serviceID>" + s_longID + "</serviceID></initializeDocument>";

#define DECLARATION "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
DocumentCase const s_startCases[] = {
    {"Empty", "", "its root is not initializeDocument"},
    {"DeclarationAlone", DECLARATION, "its root is not initializeDocument"},
    {"OtherDeclaration",
     "<?xml version=\"1.1\"?><initializeDocument><serviceID>S</serviceID></initializeDocument>",
     "its root is not initializeDocument"},
    {"OtherRoot", "<terminateDocument><serviceID>S</serviceID></terminateDocument>",
     "its root is not initializeDocument"},
    {"LongerRoot", "<initializeDocuments><serviceID>S</serviceID></initializeDocuments>",
     "its root is not initializeDocument"},
    {"Attribute", "<initializeDocument a=\"1\"><serviceID>S</serviceID></initializeDocument>",
     "its root is not initializeDocument"},
    {"NoServiceID", "<initializeDocument></initializeDocument>", "there is no service id"},
    {"EmptyServiceID", "<initializeDocument><serviceID></serviceID></initializeDocument>",
     "element serviceID is empty"},
    {"TwoServiceIDs",
     "<initializeDocument><serviceID>S</serviceID><serviceID>T</serviceID></initializeDocument>",
     "element serviceID stands twice"},
    {"LongServiceID", s_longDocument.c_str(), "its service id is too long"},
    {"EntityInServiceID", "<initializeDocument><serviceID>a&amp;b</serviceID></initializeDocument>",
     "element serviceID holds markup"},
    {"UnknownElement", "<initializeDocument><secret>S</secret></initializeDocument>",
     "it holds what is no known element"},
    {"ElementOfAnotherDocument",
     "<initializeDocument><serviceID>S</serviceID><action>CSKHMAC</action></initializeDocument>",
     "only a service id belongs there"},
    {"TextBetween", "<initializeDocument> <serviceID>S</serviceID></initializeDocument>",
     "it holds what is no known element"},
    {"NoEnd", "<initializeDocument><serviceID>S</serviceID>", "it holds what is no known element"},
    {"NoEndOfElement", "<initializeDocument><serviceID>S</initializeDocument>",
     "element serviceID has no end"},
    {"TextBehind", "<initializeDocument><serviceID>S</serviceID></initializeDocument>\n",
     "something follows its end"},
};

DocumentCase const s_setUpCases[] = {
    {"Nothing", "", "its elements do not fit its action"},
    {"UnknownAction", "<action>Secret</action><dataLocation>memory</dataLocation>", "its action is unknown"},
    {"TwoActions", "<action>CSKHMAC</action><action>CSKHMAC</action><dataLocation>memory</dataLocation>",
     "element action stands twice"},
    {"SignInFile", "<action>CSKHMAC</action><dataLocation>file</dataLocation>",
     "its elements do not fit its action"},
    {"SignNowhere", "<action>CSKHMAC</action>", "its elements do not fit its action"},
    {"SignWithServiceID",
     "<serviceID>S</serviceID><action>CSKHMAC</action><dataLocation>memory</dataLocation>",
     "its elements do not fit its action"},
    {"LocationMemoryAlone", "<dataLocation>memory</dataLocation>", "its elements do not fit its action"},
    {"CipherWithoutFile", "<action>CipherStream</action>", "its elements do not fit its action"},
    {"CipherFromFile", "<action>CipherStream</action><fileInput>x</fileInput>",
     "its elements do not fit its action"},
    {"DecipherIntoFile", "<action>DecipherStream</action><fileOutput>x</fileOutput>",
     "its elements do not fit its action"},
    {"EmptyFileName", "<action>CipherStream</action><fileOutput></fileOutput>",
     "element fileOutput is empty"},
    {"ElementBehindFileName", "<fileOutput>x</fileOutput><action>CipherStream</action>",
     "the name of its file is not the last in it"},
};
}  // namespace

TEST(KRYDocument, IsRequired)
{
    char* details = nullptr;
    EXPECT_EQ(KRY_ERROR_DOCUMENT, KRY_CryptoInitialize(nullptr, nullptr, &details));
    EXPECT_STREQ("document refused: there is none", details);
    KRY_CryptoFree(details, nullptr);
}

class KRYDocumentStart : public testing::TestWithParam<DocumentCase>
{
};

TEST_P(KRYDocumentStart, IsRefusedWithItsReason)
{
    std::string details;
    EXPECT_EQ(KRY_ERROR_DOCUMENT, callWithDocument(KRY_CryptoInitialize, GetParam().m_document, &details));
    EXPECT_EQ("document refused: " + std::string(GetParam().m_reason), details);
}

INSTANTIATE_TEST_SUITE_P(Documents, KRYDocumentStart, testing::ValuesIn(s_startCases), nameOf);

class KRYDocumentSetUp : public KRYStarted, public testing::WithParamInterface<DocumentCase>
{
};

TEST_P(KRYDocumentSetUp, IsRefusedWithItsReasonAndChangesNothing)
{
    KRYTestSession session("TALM");
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ(KRY_ERROR_DOCUMENT, session.setUp(GetParam().m_document));
    EXPECT_EQ("document refused: " + std::string(GetParam().m_reason), session.lastFailure());
    EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
}

INSTANTIATE_TEST_SUITE_P(Documents, KRYDocumentSetUp, testing::ValuesIn(s_setUpCases), nameOf);

TEST_F(KRYStarted, ServiceIDsAreASet)
{
    EXPECT_EQ(KRY_SUCCESS,
              callWithDocument(KRY_CryptoInitialize, DECLARATION
                               "<initializeDocument><serviceID>B</serviceID></initializeDocument>"));
    EXPECT_EQ(KRY_SUCCESS, startService("B"));
    KRYTestSession session("TALM");
    EXPECT_EQ(KRY_SUCCESS, stopService("Arxium"));
    EXPECT_EQ(KRY_SUCCESS, session.sign()) << "B is started still";
    EXPECT_EQ(KRY_SUCCESS, stopService("B"));
    EXPECT_EQ(KRY_ERROR_SESSION, session.sign()) << "the last stop closes sessions";
    std::string details;
    EXPECT_EQ(KRY_ERROR_STATE, stopService("B", &details));
    EXPECT_EQ("the service to be stopped is not started", details);

    void* late = &late;
    EXPECT_EQ(KRY_ERROR_STATE,
              KRY_PersistentInitialize(
                  &late, "<sessionConfigDocument><serviceID>S</serviceID></sessionConfigDocument>", nullptr,
                  nullptr));
    EXPECT_EQ(nullptr, late);
}
