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

// Bytes that count from 0 to 250 again and again, so that no two segments of a file are alike.
inline std::string bytesOf(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i % 251);
    return bytes;
}

// The text of details, which are freed.
inline std::string taken(char* details)
{
    std::string const text = details ? details : "";
    KRY_CryptoFree(details, nullptr);
    return text;
}

inline std::string serviceDocument(std::string const& root, std::string const& id)
{
    return "<" + root + "><serviceID>" + id + "</serviceID></" + root + ">";
}

// Returns why the start failed; empty after success.
inline std::string start(std::string const& id = "Arxium")
{
    char* details = nullptr;
    std::string const document = serviceDocument("initializeDocument", id);
    std::int32_t const status = KRY_CryptoInitialize(document.c_str(), nullptr, &details);
    EXPECT_EQ(KRY_SUCCEEDED(status), !details);
    return taken(details);
}
inline std::int32_t stop(std::string const& id = "Arxium")
{
    return KRY_CryptoTerminate(serviceDocument("terminateDocument", id).c_str(), nullptr, nullptr);
}

// Why the last call in a session failed, or the last start if there is no session.
inline std::string lastFailure(void* session)
{
    char* details = nullptr;
    EXPECT_EQ(KRY_SUCCESS, KRY_CryptoGetLastErrorDetails(session, nullptr, &details));
    return taken(details);
}

struct KRYTestSession
{
    explicit KRYTestSession(std::string const& id = "ARXIUM")
    {
        std::string const document = serviceDocument("sessionConfigDocument", id);
        EXPECT_EQ(KRY_SUCCESS, KRY_PersistentInitialize(&m_session, document.c_str(), nullptr, nullptr));
    }
    ~KRYTestSession() { close(); }
    KRYTestSession(KRYTestSession const&) = delete;

    std::int32_t close() { return KRY_CloseHandle(&m_session, nullptr, nullptr); }
    std::int32_t setUp(std::string const& elements)
    {
        std::string const document = "<setInfoDocument>" + elements + "</setInfoDocument>";
        return KRY_SetInfo(m_session, document.c_str(), nullptr);
    }
    std::int32_t sign() { return setUp("<action>CSKHMAC</action><dataLocation>memory</dataLocation>"); }
    std::int32_t cipher(std::string const& path)
    {
        return setUp("<action>CipherStream</action><fileOutput>" + path + "</fileOutput>");
    }
    std::int32_t decipher(std::string const& path, std::size_t offset = 0)
    {
        return setUp("<action>DecipherStream</action><fileInput>" + path + "</fileInput><offset>" +
                     std::to_string(offset) + "</offset>");
    }
    std::int32_t closingDocument() { return setUp("<dataLocation>file</dataLocation>"); }
    std::int32_t finish() { return closingDocument() == KRY_SUCCESS ? protect("") : KRY_ERROR_INTERNAL; }

    std::int32_t protect(std::string_view data, std::string* out = nullptr)
    {
        std::uint32_t count = 7;  // is not looked at
        return transfer(KRY_ProtectData, data, count, out);
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

    void* m_session = nullptr;
};

struct KRYStarted : testing::Test
{
    KRYStarted() { startWithKey(m_key); }
    ~KRYStarted() override
    {
        stop();
        NEBConfigurationStore::getStore().clear();
    }

    void startWithKey(std::string const& key)
    {
        stop();
        writeFile(m_keyFolder / "key", key);
        NEBConfigurationStore::getStore().setValue("cryptoKeyFile", (m_keyFolder / "key").c_str());
        EXPECT_EQ("", start());
    }

    std::string const m_key = "0123456789abcdefghijklmnopqrstuv";
    TemporaryFolder m_keyFolder;
    TemporaryFolder m_folder;
};

#endif
