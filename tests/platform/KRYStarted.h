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
    std::remove(
        path.c_str());  // an overwritten file would go to the disk at once on ext4, a new one does not
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_EQ(0, chmod(path.c_str(), mode));
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
    std::string const document = "<initializeDocument>" + content + "</initializeDocument>";
    std::int32_t const status = KRY_CryptoInitialize(document.c_str(), nullptr, &details);
    EXPECT_EQ(KRY_SUCCEEDED(status), details == nullptr);
    std::string const reason = taken(details);
    if (text)
        *text = reason;
    return status;
}
inline std::int32_t stop(std::string const& content)
{
    return KRY_CryptoTerminate(("<terminateDocument>" + content + "</terminateDocument>").c_str(), nullptr,
                               nullptr);
}
constexpr char s_service[] = "<serviceID>Arxium</serviceID>";

class KRYTestSession
{
public:
    explicit KRYTestSession(std::string const& id = "ARXIUM")
    {
        std::string const document =
            "<sessionConfigDocument><serviceID>" + id + "</serviceID></sessionConfigDocument>";
        EXPECT_EQ(KRY_SUCCESS, KRY_PersistentInitialize(&m_session, document.c_str(), nullptr, nullptr));
    }
    ~KRYTestSession() { close(); }
    KRYTestSession(KRYTestSession const&) = delete;
    KRYTestSession& operator=(KRYTestSession const&) = delete;

    std::int32_t close() { return KRY_CloseHandle(&m_session, nullptr, nullptr); }
    void* get() const { return m_session; }

    std::int32_t setUp(std::string const& content)
    {
        return KRY_SetInfo(m_session, ("<setInfoDocument>" + content + "</setInfoDocument>").c_str(),
                           nullptr);
    }
    std::int32_t sign() { return setUp("<action>CSKHMAC</action><dataLocation>memory</dataLocation>"); }
    std::int32_t cipher(std::string const& path)
    {
        return setUp("<action>CipherStream</action><fileOutput>" + path + "</fileOutput>");
    }
    std::int32_t decipher(std::string const& path)
    {
        return setUp("<action>DecipherStream</action><fileInput>" + path + "</fileInput>");
    }
    std::int32_t closingDocument() { return setUp("<dataLocation>file</dataLocation>"); }
    std::int32_t finish() { return closingDocument() == KRY_SUCCESS ? protect("") : KRY_ERROR_INTERNAL; }

    std::int32_t protect(std::string_view data, std::string* out = nullptr)
    {
        char* bytes = nullptr;
        std::uint32_t count = 7;
        auto const size = static_cast<std::uint32_t>(data.size());
        std::int32_t const status = KRY_ProtectData(m_session, data.data(), size, &bytes, &count, nullptr);
        return take(status, bytes, count, out);
    }
    // Appends up to wanted bytes to out.
    std::int32_t read(std::string& out, std::uint32_t wanted = 0)
    {
        char* bytes = nullptr;
        std::int32_t const status = KRY_UnprotectData(m_session, nullptr, 0, &bytes, &wanted, nullptr);
        return take(status, bytes, wanted, &out);
    }
    // Appends all the rest to out: success for a clean end.
    std::int32_t readAll(std::string& out, std::uint32_t wanted = 0)
    {
        std::size_t const before = out.size();
        std::int32_t const status = read(out, wanted);
        return KRY_SUCCEEDED(status) && out.size() != before ? readAll(out, wanted) : status;
    }

    std::string lastFailure()
    {
        char* details = nullptr;
        EXPECT_EQ(KRY_SUCCESS, KRY_CryptoGetLastErrorDetails(m_session, nullptr, &details));
        return taken(details);
    }

private:
    static std::int32_t take(std::int32_t status, char* bytes, std::uint32_t count, std::string* out)
    {
        EXPECT_EQ(count == 0, bytes == nullptr);
        EXPECT_TRUE(KRY_SUCCEEDED(status) || count == 0);
        if (out)
            out->append(bytes ? bytes : "", count);
        KRY_CryptoFree(bytes, nullptr);
        return status;
    }

    void* m_session = nullptr;
};

class KRYStarted : public testing::Test
{
protected:
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
