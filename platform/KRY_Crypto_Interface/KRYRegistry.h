// The open sessions, behind tokens that callers can't do any harm with.
//
// A token is no address but a number, used once: a mark, which no address has, 43 bits that count the
// sessions opened so far, and 20 bits that name a slot. A slot's lock is its session's lock, and slots never
// go away, so finding a session costs that one lock, sessions do not get in each other's way, and closing one
// waits for the call that is in it. At most 2^20 sessions are open at once.

#ifndef KRY_CRYPTO_INTERFACE_KRYREGISTRY_H
#define KRY_CRYPTO_INTERFACE_KRYREGISTRY_H

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include "KRY_Crypto_Interface/KRYSession.h"
#include "KRY_Crypto_Interface/KRYSlotLock.h"

class KRYRegistry
{
    struct Slot;

public:
    // A session, locked for the object's lifetime. Raises KRYError with KRY_ERROR_SESSION for what is no
    // token of an open session.
    class Access
    {
    public:
        Access(KRYRegistry& registry, void* token);
        KRYSession& operator*() const { return *m_slot.m_session; }
        KRYSession* operator->() const { return m_slot.m_session.get(); }

    private:
        Slot& m_slot;
        std::lock_guard<KRYSlotLock> m_guard;
    };

    KRYRegistry() = default;
    KRYRegistry(KRYRegistry const&) = delete;
    KRYRegistry& operator=(KRYRegistry const&) = delete;

    void* add(std::unique_ptr<KRYSession> session);
    // Raises as Access does.
    void close(void* token);
    // No session may be added meanwhile.
    void closeAll();

private:
    static constexpr std::size_t s_slotBits = 20;
    static constexpr std::size_t s_chunkSize = 256;

    // A cache line of its own keeps sessions of different threads apart.
    struct alignas(64) Slot
    {
        KRYSlotLock m_lock;
        std::size_t m_index = 0;
        std::uint64_t m_token = 0;  // 0: closed
        std::unique_ptr<KRYSession> m_session;
        Slot* m_nextFree = nullptr;  // guarded by the registry's lock
    };
    using Chunk = std::array<Slot, s_chunkSize>;

    Slot& findSlot(void* token) const;
    Slot& slotAt(std::size_t index) const;
    Slot& takeFreeSlot(std::uint64_t& token);
    void addChunk();
    void release(Slot& slot);

    // Chunks are made as needed and never freed.
    std::array<std::atomic<Chunk*>, (std::size_t{1} << s_slotBits) / s_chunkSize> m_chunks{};
    std::mutex m_lock;
    Slot* m_firstFree = nullptr;
    std::size_t m_slotCount = 0;
    std::uint64_t m_serial = 0;
};

#endif
