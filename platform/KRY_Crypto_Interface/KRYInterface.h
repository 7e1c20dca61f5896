// What the ten functions share: the started services, the master key while there is one, and the sessions.
// Any thread may call any operation. No operation is called while a session is held.

#ifndef KRY_CRYPTO_INTERFACE_KRYINTERFACE_H
#define KRY_CRYPTO_INTERFACE_KRYINTERFACE_H

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYRegistry.h"
#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYInterface
{
public:
    // Made by the first call, never destroyed.
    static KRYInterface& getInstance();

    // All take documents and raise KRYError. The first start loads the key; the last stop closes all
    // sessions, waiting for calls that are in them, and wipes it.
    void start(char const* document);
    void stop(char const* document);
    void* open(char const* document);

    // Why the last start failed; empty if it succeeded.
    std::string getStartFailure();

    KRYRegistry& getSessions() { return m_sessions; }

private:
    KRYInterface() = default;
    void startService(char const* document);

    std::mutex m_lock;
    std::set<std::string, std::less<>> m_services;
    std::unique_ptr<KRYSecret> m_masterKey;  // there while a service is started; sessions refer to it
    KRYLastFailure m_startFailure;
    KRYRegistry m_sessions;
};

#endif
