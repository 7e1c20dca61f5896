// The open sessions. Their users hold tokens, which can do no harm: a token is no address but a number, used
// once.
//
// Any thread may call. Sessions run side by side; calls on one session run one at a time.

#ifndef KRY_CRYPTO_INTERFACE_KRYREGISTRY_H
#define KRY_CRYPTO_INTERFACE_KRYREGISTRY_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYSession.h"

class KRYRegistry
{
    struct Entry
    {
        // Waits for a call that is in the session.
        void close();

        std::mutex m_lock;
        std::unique_ptr<KRYSession> m_session;  // null once it is closed
    };
    using Entries = std::unordered_map<std::uintptr_t, std::shared_ptr<Entry>>;

public:
    KRYRegistry() = default;
    KRYRegistry(KRYRegistry const&) = delete;
    KRYRegistry& operator=(KRYRegistry const&) = delete;

    void* add(std::unique_ptr<KRYSession> session);
    // Runs work on the session, which keeps the reason of a failure. This and close raise KRYError with
    // KRY_ERROR_SESSION for what is no token of an open session.
    template <class Work>
    void with(void* token, Work work)
    {
        std::shared_ptr<Entry> const entry = find(token);
        std::lock_guard<std::mutex> const guard(entry->m_lock);
        if (!entry->m_session)
            refuse();
        keepReason(entry->m_session->getLastFailure(), [&] { work(*entry->m_session); });
    }
    void close(void* token);
    void closeAll();

private:
    [[noreturn]] static void refuse();
    std::shared_ptr<Entry> find(void* token);

    std::mutex m_lock;  // never taken together with an entry's
    Entries m_entries;
    std::uintptr_t m_lastToken = 1;  // tokens are odd; the address of a session variable never is
};

#endif
