#include "platform/KRYStarted.h"

namespace
{
// Contents of documents, and why they are refused.
std::pair<char const*, char const*> const s_startCases[] = {
    {"", "there is no service id"},
    {"<serviceID></serviceID>", "element serviceID is empty"},
    {"<serviceID>S</serviceID><serviceID>T</serviceID>", "element serviceID stands twice"},
    {"<serviceID>a&amp;b</serviceID>", "element serviceID holds markup"},
    {"<serviceID>S", "element serviceID has no end"},
    {"<serviceID a=\"1\">S</serviceID>", "it holds what is no known element"},
    {"<serviceID>S</serviceID><action>CSKHMAC</action>", "only a service id belongs there"},
    {"<serviceID>S</serviceID></initializeDocument>\n", "something follows its end"},
};

char const s_unfit[] = "its elements do not fit its action";

std::pair<char const*, char const*> const s_setUpCases[] = {
    {"<action>Secret</action><dataLocation>memory</dataLocation>", "its action is unknown"},
    {"<action>CSKHMAC</action><action>CSKHMAC</action>", "element action stands twice"},
    {"<action>CSKHMAC</action><dataLocation>file</dataLocation>", s_unfit},
    {"<serviceID>S</serviceID><action>CSKHMAC</action><dataLocation>memory</dataLocation>", s_unfit},
    {"<dataLocation>memory</dataLocation>", s_unfit},
    {"<action>CipherStream</action>", s_unfit},
    {"<action>DecipherStream</action>", s_unfit},
    {"<fileOutput>x</fileOutput><action>CipherStream</action>", "the name of its file is not the last in it"},
};
}  // namespace

TEST(KRYDocument, OfAStartIsTakenStrictly)
{
    std::string text;
    for (auto const& [content, reason] : s_startCases)
    {
        EXPECT_EQ(KRY_ERROR_DOCUMENT, start(content, &text)) << content;
        EXPECT_EQ("document refused: " + std::string(reason), text) << content;
    }
    EXPECT_EQ(KRY_ERROR_DOCUMENT, start(element("serviceID", std::string(256, 'x'))));
    for (char const* const document :
         {static_cast<char const*>(nullptr), "",
          "<terminateDocument><serviceID>S</serviceID></terminateDocument>",
          "<?xml version=\"1.1\"?><initializeDocument><serviceID>S</serviceID></initializeDocument>"})
        EXPECT_EQ(KRY_ERROR_DOCUMENT, KRY_CryptoInitialize(document, nullptr, nullptr));
}

TEST_F(KRYStarted, RefusedSetUpsChangeNothing)
{
    KRYTestSession session("TALM");
    EXPECT_EQ(KRY_ERROR_STATE, session.protect("data"));
    EXPECT_EQ("the session is not set up to protect data", session.lastFailure());
    ASSERT_EQ(KRY_SUCCESS, session.sign());
    for (auto const& [content, reason] : s_setUpCases)
    {
        EXPECT_EQ(KRY_ERROR_DOCUMENT, session.setUp(content)) << content;
        EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
        EXPECT_EQ("document refused: " + std::string(reason), session.lastFailure()) << content;
    }
}

TEST_F(KRYStarted, ServiceIDsAreASet)
{
    std::string const id = "<serviceID>B</serviceID>",
                      document = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>" +
                                 element("initializeDocument", id);
    EXPECT_EQ(KRY_SUCCESS, KRY_CryptoInitialize(document.c_str(), nullptr, nullptr));
    EXPECT_EQ(KRY_SUCCESS, start(id));
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, stop(s_service));
    EXPECT_EQ(KRY_SUCCESS, session.sign()) << "B is started still";
    EXPECT_EQ(KRY_SUCCESS, stop(id));
    EXPECT_EQ(KRY_ERROR_SESSION, session.sign()) << "the last stop closes sessions";
    EXPECT_EQ(KRY_ERROR_STATE, stop(id));

    void* late = &late;
    std::string const config = element("sessionConfigDocument", id);
    EXPECT_EQ(KRY_ERROR_STATE, KRY_PersistentInitialize(&late, config.c_str(), nullptr, nullptr));
    EXPECT_EQ(nullptr, late);
}
