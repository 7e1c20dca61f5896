// The crypto interface, started with a key file of our own for as long as the object lives, and a folder that
// is current meanwhile.

#ifndef ARXIUM_FUZZ_RUNNINGCRYPTO_H
#define ARXIUM_FUZZ_RUNNINGCRYPTO_H

#include <fstream>
#include <string>

#include <sys/stat.h>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "fuzz/Fuzz.h"
#include "support/TemporaryFolder.h"

class RunningCrypto
{
public:
    RunningCrypto() : m_current(m_folder.path())
    {
        std::string const key = m_keyFolder / "key";
        std::ofstream(key) << "0123456789abcdefghijklmnopqrstuv";
        chmod(key.c_str(), 0600);
        NEBConfigurationStore::getStore().setValue("cryptoKeyFile", key.c_str());
        mustHold(KRY_CryptoInitialize("<initializeDocument><serviceID>fuzz</serviceID></initializeDocument>",
                                      nullptr, nullptr) == KRY_SUCCESS,
                 "the crypto interface starts");
    }
    ~RunningCrypto()
    {
        KRY_CryptoTerminate("<terminateDocument><serviceID>fuzz</serviceID></terminateDocument>", nullptr,
                            nullptr);
    }

    RunningCrypto(RunningCrypto const&) = delete;
    RunningCrypto& operator=(RunningCrypto const&) = delete;

private:
    TemporaryFolder m_keyFolder;
    TemporaryFolder m_folder;
    CurrentFolder m_current;
};

class CryptoSession
{
public:
    CryptoSession()
    {
        mustHold(
            KRY_PersistentInitialize(
                &m_session, "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>",
                nullptr, nullptr) == KRY_SUCCESS,
            "a session opens");
    }
    ~CryptoSession() { KRY_CloseHandle(&m_session, nullptr, nullptr); }

    CryptoSession(CryptoSession const&) = delete;
    CryptoSession& operator=(CryptoSession const&) = delete;

    std::int32_t setUp(std::string const& document)
    {
        return KRY_SetInfo(m_session, document.c_str(), nullptr);
    }
    void write(std::string const& data)
    {
        mustHold(KRY_ProtectData(m_session, data.data(), static_cast<std::uint32_t>(data.size()), nullptr,
                                 nullptr, nullptr) == KRY_SUCCESS,
                 "data can be protected");
    }
    // Appends the next bytes of a file to data.
    std::int32_t read(std::string& data)
    {
        char* bytes = nullptr;
        std::uint32_t size = 0;
        std::int32_t const status = KRY_UnprotectData(m_session, nullptr, 0, &bytes, &size, nullptr);
        mustHold((bytes == nullptr) == (size == 0), "memory comes only with bytes in it");
        if (bytes)
            data.append(bytes, size);
        KRY_CryptoFree(bytes, nullptr);
        return status;
    }

private:
    void* m_session = nullptr;
};

#endif
