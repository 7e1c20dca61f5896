// A lock between the threads of one process. A thread that holds it must not take it again.
//
// Made for short work: whoever finds it taken tries again for some microseconds before it sleeps.

#ifndef NEBCORE_NEBTHREADCRITICALSECTION_H
#define NEBCORE_NEBTHREADCRITICALSECTION_H

#include <mutex>

#include "NEBCore/NEBThreadLockableResource.h"

class NEBCORE_API NEB_CAPABILITY("mutex") NEBThreadCriticalSection final : public NEBThreadLockableResource
{
public:
    // The argument is reserved.
    explicit NEBThreadCriticalSection(int) {}

    NEBThreadCriticalSection(NEBThreadCriticalSection const&) = delete;
    NEBThreadCriticalSection& operator=(NEBThreadCriticalSection const&) = delete;

    void lock() NEB_ACQUIRE() override
    {
        if (!m_mutex.try_lock())
            waitAndLock();
    }
    void unlock() NEB_RELEASE() override { m_mutex.unlock(); }

private:
    void waitAndLock();

    // A cache line of its own: what lies beside the lock is read while others wait for it.
    alignas(64) std::mutex m_mutex;
};

#endif
