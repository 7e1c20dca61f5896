// A lock that hardly anybody waits for: a session has one user at a time as a rule. Giving it back is a plain
// store where std::mutex needs a second locked instruction, a third of what a short write costs beside its
// encryption. Whoever has to wait tries a few times and then sleeps between the tries, since a holder may be
// at work on a file.

#ifndef KRY_CRYPTO_INTERFACE_KRYSLOTLOCK_H
#define KRY_CRYPTO_INTERFACE_KRYSLOTLOCK_H

#include <atomic>
#include <chrono>
#include <thread>

class KRYSlotLock
{
public:
    void lock()
    {
        for (int yields = 20; m_isTaken.exchange(true, std::memory_order_acquire);)
            if (yields > 0)
            {
                --yields;
                std::this_thread::yield();
            }
            else
                std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
    void unlock() { m_isTaken.store(false, std::memory_order_release); }

private:
    std::atomic<bool> m_isTaken{false};
};

#endif
