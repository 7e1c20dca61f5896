// The crypto interface started with a key file of the test's own, and sessions that are short to call.

#ifndef ARXIUM_TESTS_PLATFORM_KRYSTARTED_H
#define ARXIUM_TESTS_PLATFORM_KRYSTARTED_H

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "support/TemporaryFolder.h"

inline void writeFile(std::string const& path, std::string_view bytes, mode_t mode = 0600)
{
    std::remove(path.c_str());  // an overwritten file would go to the disk at once on ext4
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_EQ(0, chmod(path.c_str(), mode));
}

// "<name>content</name>"
inline std::string element(std::string const& name, std::string const& content)
{
    return "<" + name + ">" + content + "</" + name + ">";
}

// The text of details, which are freed.
inline std::string taken(char* details)
{
    std::string const text = details ? details : "";
    KRY_CryptoFree(details, nullptr);
    return text;
}

// Starts and stops take a document of that content; a start puts its details in text.
inline std::int32_t start(std::string const& content, std::string* text = nullptr)
{
    char* details = nullptr;
    std::string const document = element("initializeDocument", content);
    std::int32_t const status = KRY_CryptoInitialize(document.c_str(), nullptr, &details);
    EXPECT_EQ(KRY_SUCCEEDED(status), details == nullptr);
    std::string const reason = taken(details);
    if (text)
        *text = reason;
    return status;
}
inline std::int32_t stop(std::string const& content)
{
    return KRY_CryptoTerminate(element("terminateDocument", content).c_str(), nullptr, nullptr);
}
constexpr char s_service[] = "<serviceID>Arxium</serviceID>";

struct KRYTestSession
{
    explicit KRYTestSession(std::string const& id = "ARXIUM")
    {
        std::string const document = element("sessionConfigDocument", element("serviceID", id));
        EXPECT_EQ(KRY_SUCCESS, KRY_PersistentInitialize(&m_session, document.c_str(), nullptr, nullptr));
    }
    ~KRYTestSession() { close(); }
    KRYTestSession(KRYTestSession const&) = delete;
    KRYTestSession& operator=(KRYTestSession const&) = delete;

    std::int32_t close() { return KRY_CloseHandle(&m_session, nullptr, nullptr); }

    std::int32_t setUp(std::string const& content)
    {
        return KRY_SetInfo(m_session, element("setInfoDocument", content).c_str(), nullptr);
    }
    std::int32_t sign() { return setUp("<action>CSKHMAC</action><dataLocation>memory</dataLocation>"); }
    std::int32_t cipher(std::string const& path)
    {
        return setUp("<action>CipherStream</action>" + element("fileOutput", path));
    }
    std::int32_t decipher(std::string const& path, std::string const& offset = "")
    {
        return setUp("<action>DecipherStream</action>" + element("fileInput", path) +
                     (offset.empty() ? "" : element("offset", offset)));
    }
    std::int32_t closingDocument() { return setUp("<dataLocation>file</dataLocation>"); }
    std::int32_t finish() { return closingDocument() == KRY_SUCCESS ? protect("") : KRY_ERROR_INTERNAL; }

    std::int32_t protect(std::string_view data, std::string* out = nullptr)
    {
        std::uint32_t count = 7;
        return transfer(KRY_ProtectData, data, count, out);
    }
    // Appends the next bytes to out.
    std::int32_t unprotect(std::uint32_t wanted = 0, std::string* out = nullptr)
    {
        return transfer(KRY_UnprotectData, {}, wanted, out);
    }
    // Appends all the rest to out, at most wanted bytes at once: success for a clean end.
    std::int32_t readAll(std::string& out, std::uint32_t wanted = 0)
    {
        std::uint32_t count = wanted;
        std::int32_t const status = transfer(KRY_UnprotectData, {}, count, &out);
        return KRY_SUCCEEDED(status) && count != 0 ? readAll(out, wanted) : status;
    }
    std::int32_t transfer(decltype(&KRY_ProtectData) function, std::string_view data, std::uint32_t& count,
                          std::string* out)
    {
        char* bytes = nullptr;
        auto const size = static_cast<std::uint32_t>(data.size());
        std::int32_t const status = function(m_session, data.data(), size, &bytes, &count, nullptr);
        EXPECT_EQ(count == 0, bytes == nullptr);
        EXPECT_TRUE(KRY_SUCCEEDED(status) || count == 0);
        if (out)
            out->append(bytes ? bytes : "", count);
        KRY_CryptoFree(bytes, nullptr);
        return status;
    }

    std::string getInfo(std::string name)
    {
        char* text = nullptr;
        KRY_GetInfo(m_session, name.data(), &text, nullptr);
        return taken(text);
    }
    std::string lastFailure()
    {
        char* details = nullptr;
        EXPECT_EQ(KRY_SUCCESS, KRY_CryptoGetLastErrorDetails(m_session, nullptr, &details));
        return taken(details);
    }

    void* m_session = nullptr;
};

struct KRYStarted : testing::Test
{
    KRYStarted() { startWithKey(m_key); }
    ~KRYStarted() override
    {
        stop(s_service);
        NEBConfigurationStore::getStore().clear();
    }

    void startWithKey(std::string const& key)
    {
        stop(s_service);
        writeFile(m_keyFolder / "key", key);
        NEBConfigurationStore::getStore().setValue("cryptoKeyFile", (m_keyFolder / "key").c_str());
        EXPECT_EQ(KRY_SUCCESS, start(s_service));
    }

    std::string const m_key = "0123456789abcdefghijklmnopqrstuv";
    TemporaryFolder m_keyFolder;
    TemporaryFolder m_folder;
};

#endif
