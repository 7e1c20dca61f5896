#include "KRY_Crypto_Interface/KRYRegistry.h"

#include <utility>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::uint64_t s_mark = std::uint64_t{1} << 63;  // no address of a process has this bit

[[noreturn]] void refuse()
{
    throw KRYError(KRY_ERROR_SESSION, "the session is null, closed or none of this interface");
}
}  // namespace

KRYRegistry::Access::Access(KRYRegistry& registry, void* token)
    : m_slot(registry.findSlot(token)), m_guard(m_slot.m_lock)
{
    if (m_slot.m_token != reinterpret_cast<std::uintptr_t>(token))
        refuse();
}

void* KRYRegistry::add(std::unique_ptr<KRYSession> session)
{
    std::uint64_t token = 0;
    Slot& slot = takeFreeSlot(token);
    std::lock_guard<KRYSlotLock> const guard(slot.m_lock);
    slot.m_session = std::move(session);
    slot.m_token = token;
    static_assert(sizeof(void*) == sizeof token, "a token fills a pointer");
    return reinterpret_cast<void*>(token);  // NOLINT(performance-no-int-to-ptr): it is no address
}

void KRYRegistry::close(void* token)
{
    Slot& slot = findSlot(token);
    {
        Access const access(*this, token);
        slot.m_token = 0;
        slot.m_session.reset();
    }
    release(slot);
}

void KRYRegistry::closeAll()
{
    std::size_t count = 0;
    {
        std::lock_guard<std::mutex> const guard(m_lock);
        count = m_slotCount;
    }
    for (std::size_t index = 0; index < count; ++index)
    {
        Slot& slot = slotAt(index);
        std::unique_lock<KRYSlotLock> guard(slot.m_lock);
        if (std::exchange(slot.m_token, 0) == 0)
            continue;
        slot.m_session.reset();
        guard.unlock();
        release(slot);
    }
}

KRYRegistry::Slot& KRYRegistry::findSlot(void* token) const
{
    auto const number = reinterpret_cast<std::uintptr_t>(token);
    std::size_t const index = number & ((std::size_t{1} << s_slotBits) - 1);
    if ((number & s_mark) == 0 || !m_chunks[index / s_chunkSize].load(std::memory_order_acquire))
        refuse();
    return slotAt(index);
}

KRYRegistry::Slot& KRYRegistry::slotAt(std::size_t index) const
{
    return (*m_chunks[index / s_chunkSize].load(std::memory_order_acquire))[index % s_chunkSize];
}

KRYRegistry::Slot& KRYRegistry::takeFreeSlot(std::uint64_t& token)
{
    std::lock_guard<std::mutex> const guard(m_lock);
    if (!m_firstFree)
        addChunk();
    Slot& slot = *std::exchange(m_firstFree, m_firstFree->m_nextFree);
    token = s_mark | ++m_serial << s_slotBits | slot.m_index;
    return slot;
}

void KRYRegistry::addChunk()
{
    if (m_slotCount == m_chunks.size() * s_chunkSize)
        throw KRYError(KRY_ERROR_STATE, "too many sessions are open");
    auto chunk = std::make_unique<Chunk>();
    for (Slot& slot : *chunk)
    {
        slot.m_index = m_slotCount++;
        slot.m_nextFree = std::exchange(m_firstFree, &slot);
    }
    m_chunks[(m_slotCount - 1) / s_chunkSize].store(chunk.release(), std::memory_order_release);
}

void KRYRegistry::release(Slot& slot)
{
    std::lock_guard<std::mutex> const guard(m_lock);
    slot.m_nextFree = std::exchange(m_firstFree, &slot);
}
