#include "KRY_Crypto_Interface/KRYInterface.h"

#include <memory>
#include <utility>

#include <openssl/crypto.h>

#include "KRY_Crypto_Interface/KRYDocument.h"
#include "KRY_Crypto_Interface/KRYKeyFile.h"

KRYInterface& KRYInterface::getInstance()
{
    static KRYInterface& s_instance = *new KRYInterface;
    return s_instance;
}

void KRYInterface::start(char const* document)
{
    std::lock_guard<std::mutex> const guard(m_lock);
    keepReason(m_startFailure, [&] { startService(document); });
    m_startFailure.reset();
}

void KRYInterface::startService(char const* document)
{
    std::string_view const serviceID = readServiceID(document, "initializeDocument");
    // OpenSSL's cleanup at exit frees what other threads may still be using.
    requireCrypto(OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr) == 1, "OPENSSL_init_crypto");
    // Where OpenSSL had no memory for its first steps, it crashes in later ones.
    requireCrypto(OSSL_LIB_CTX_get0_global_default() != nullptr, "OSSL_LIB_CTX_get0_global_default");
    KRYMasterKeys keys = m_services.empty() ? loadKeyFile() : KRYMasterKeys();
    m_services.emplace(serviceID);
    if (m_keys.empty())
        m_keys = std::move(keys);
}

void KRYInterface::stop(char const* document)
{
    std::string_view const serviceID = readServiceID(document, "terminateDocument");
    std::lock_guard<std::mutex> const guard(m_lock);
    auto const service = m_services.find(serviceID);
    if (service == m_services.end())
        throw KRYError(KRY_ERROR_STATE, "the service to be stopped is not started");
    m_services.erase(service);
    if (!m_services.empty())
        return;
    m_sessions.closeAll();
    m_keys = KRYMasterKeys();
}

void* KRYInterface::open(char const* document)
{
    std::string_view const serviceID = readServiceID(document, "sessionConfigDocument");
    std::lock_guard<std::mutex> const guard(m_lock);
    if (m_keys.empty())
        throw KRYError(KRY_ERROR_STATE, "the interface is not started");
    return m_sessions.add(std::make_unique<KRYSession>(serviceID, m_keys));
}
