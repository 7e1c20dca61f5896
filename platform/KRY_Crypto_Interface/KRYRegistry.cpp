#include "KRY_Crypto_Interface/KRYRegistry.h"

#include <utility>

void KRYRegistry::Entry::close()
{
    std::lock_guard<std::mutex> const guard(m_lock);
    m_session.reset();
}

void* KRYRegistry::add(std::unique_ptr<KRYSession> session)
{
    auto entry = std::make_shared<Entry>();
    entry->m_session = std::move(session);
    std::lock_guard<std::mutex> const guard(m_lock);
    std::uintptr_t const token = m_lastToken + 2;
    if (token < m_lastToken)
        throw KRYError(KRY_ERROR_STATE, "no more sessions can be told apart");
    m_entries.emplace(token, std::move(entry));
    m_lastToken = token;
    return reinterpret_cast<void*>(token);  // NOLINT(performance-no-int-to-ptr): it is no address
}

void KRYRegistry::close(void* token)
{
    std::unique_lock<std::mutex> guard(m_lock);
    auto const entry = m_entries.extract(reinterpret_cast<std::uintptr_t>(token));
    guard.unlock();
    if (!entry)
        refuse();
    entry.mapped()->close();
}

void KRYRegistry::closeAll()
{
    std::unique_lock<std::mutex> guard(m_lock);
    Entries const entries = std::exchange(m_entries, {});
    guard.unlock();
    for (auto const& entry : entries)
        entry.second->close();
}

void KRYRegistry::refuse()
{
    throw KRYError(KRY_ERROR_SESSION, "the session is null, closed or none of this interface");
}

std::shared_ptr<KRYRegistry::Entry> KRYRegistry::find(void* token)
{
    std::lock_guard<std::mutex> const guard(m_lock);
    auto const found = m_entries.find(reinterpret_cast<std::uintptr_t>(token));
    if (found == m_entries.end())
        refuse();
    return found->second;
}
