// A lock that hardly anybody waits for: a session has one user at a time as a rule. Giving it back is a plain
// store where std::mutex needs a second locked instruction, a third of what a short write costs. Whoever has
// to wait lets other threads run meanwhile.

#ifndef KRY_CRYPTO_INTERFACE_KRYSLOTLOCK_H
#define KRY_CRYPTO_INTERFACE_KRYSLOTLOCK_H

#include <atomic>
#include <thread>

class KRYSlotLock
{
public:
    void lock()
    {
        while (m_isTaken.exchange(true, std::memory_order_acquire))
            std::this_thread::yield();
    }
    void unlock() { m_isTaken.store(false, std::memory_order_release); }

private:
    std::atomic<bool> m_isTaken{false};
};

#endif
