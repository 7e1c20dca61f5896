// The crypto interface started with a key file of the test's own, and sessions that are short to call.

#ifndef ARXIUM_TESTS_PLATFORM_KRYSTARTED_H
#define ARXIUM_TESTS_PLATFORM_KRYSTARTED_H

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "support/TemporaryFolder.h"

inline void writeFile(std::string const& path, std::string_view bytes, mode_t mode = 0600)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_EQ(0, chmod(path.c_str(), mode));
}

inline std::string readFile(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Calls a function that takes a document and details, and gives the details back in text if that is wanted.
inline std::int32_t callWithDocument(std::int32_t (*call)(char const*, void*, char**),
                                     std::string const& document, std::string* text = nullptr)
{
    char* details = nullptr;
    std::int32_t const status = call(document.c_str(), nullptr, &details);
    EXPECT_EQ(KRY_SUCCEEDED(status), details == nullptr);
    if (text)
        *text = details ? details : "";
    KRY_CryptoFree(details, nullptr);
    return status;
}

inline std::int32_t startService(std::string const& id, std::string* text = nullptr)
{
    return callWithDocument(KRY_CryptoInitialize,
                            "<initializeDocument><serviceID>" + id + "</serviceID></initializeDocument>",
                            text);
}

inline std::int32_t stopService(std::string const& id, std::string* text = nullptr)
{
    return callWithDocument(KRY_CryptoTerminate,
                            "<terminateDocument><serviceID>" + id + "</serviceID></terminateDocument>", text);
}

class KRYTestSession
{
public:
    explicit KRYTestSession(std::string const& serviceID)
    {
        std::string const document =
            "<sessionConfigDocument><serviceID>" + serviceID + "</serviceID></sessionConfigDocument>";
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
    std::int32_t finish()
    {
        std::int32_t const status = closingDocument();
        return KRY_SUCCEEDED(status) ? protect("") : status;
    }

    std::int32_t protect(std::string_view data, std::string* out = nullptr)
    {
        char* bytes = nullptr;
        std::uint32_t size = 7;
        std::int32_t const status = KRY_ProtectData(
            m_session, data.data(), static_cast<std::uint32_t>(data.size()), &bytes, &size, nullptr);
        return take(status, bytes, size, out);
    }
    // Up to wanted bytes, appended to out.
    std::int32_t read(std::string& out, std::uint32_t wanted = 0)
    {
        char* bytes = nullptr;
        std::uint32_t size = wanted;
        std::int32_t const status = KRY_UnprotectData(m_session, nullptr, 0, &bytes, &size, nullptr);
        return take(status, bytes, size, &out);
    }
    // All the rest, appended to out: success for a clean end.
    std::int32_t readAll(std::string& out, std::uint32_t wanted = 0)
    {
        std::size_t before;
        std::int32_t status;
        do
        {
            before = out.size();
            status = read(out, wanted);
        } while (KRY_SUCCEEDED(status) && out.size() != before);
        return status;
    }

    std::string lastFailure()
    {
        char* details = nullptr;
        EXPECT_EQ(KRY_SUCCESS, KRY_CryptoGetLastErrorDetails(m_session, nullptr, &details));
        std::string const text = details ? details : "";
        KRY_CryptoFree(details, nullptr);
        return text;
    }

private:
    static std::int32_t take(std::int32_t status, char* bytes, std::uint32_t size, std::string* out)
    {
        EXPECT_EQ(size == 0, bytes == nullptr);
        EXPECT_TRUE(KRY_SUCCEEDED(status) || size == 0);
        if (out && bytes)
            out->append(bytes, size);
        KRY_CryptoFree(bytes, nullptr);
        return status;
    }

    void* m_session = nullptr;
};

class KRYStarted : public testing::Test
{
protected:
    KRYStarted()
    {
        useKey(m_key);
        EXPECT_EQ(KRY_SUCCESS, startService("Arxium"));
    }
    ~KRYStarted() override
    {
        stopService("Arxium");
        NEBConfigurationStore::getStore().clear();
    }

    // From the next start on.
    void useKey(std::string const& key)
    {
        std::string const path = m_keyFolder / "key";
        writeFile(path, key);
        NEBConfigurationStore::getStore().setValue("cryptoKeyFile", path.c_str());
    }
    void restart()
    {
        EXPECT_EQ(KRY_SUCCESS, stopService("Arxium"));
        EXPECT_EQ(KRY_SUCCESS, startService("Arxium"));
    }

    std::string const m_key = "0123456789abcdefghijklmnopqrstuv";
    TemporaryFolder m_keyFolder;
    TemporaryFolder m_folder;
};

#endif
