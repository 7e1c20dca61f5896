// What the ten functions share: the started services, the master keys while there are some, and the sessions.
// Any thread may call any operation. Lock order: this lock first, then a session's.

#ifndef KRY_CRYPTO_INTERFACE_KRYINTERFACE_H
#define KRY_CRYPTO_INTERFACE_KRYINTERFACE_H

#include <mutex>
#include <set>
#include <string>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYRegistry.h"
#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYInterface
{
public:
    // Made by the first call, never destroyed.
    static KRYInterface& getInstance();

    // All take documents and raise KRYError. The first start loads the keys; the last stop closes all
    // sessions, waiting for calls that are in them, and wipes the keys.
    void start(char const* document);
    void stop(char const* document);
    void* open(char const* document);

    // Calls work with the reason why the last start failed; null if it succeeded or there was no
    // memory to keep it.
    template <class Work>
    void withStartFailure(Work work)
    {
        std::lock_guard<std::mutex> const guard(m_lock);
        work(m_startFailure);
    }

    KRYRegistry& getSessions() { return m_sessions; }

private:
    KRYInterface() = default;
    void startService(char const* document);

    std::mutex m_lock;
    std::set<std::string, std::less<>> m_services;
    KRYMasterKeys m_keys;  // empty unless a service is started; sessions refer to them
    KRYText m_startFailure;
    KRYRegistry m_sessions;
};

#endif
