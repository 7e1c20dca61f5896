// A lock between the threads of one process. A thread that holds it must not lock it again.
//
// It is made for short work: a thread that finds it locked tries again for a moment before it sleeps.
//
// Example:
//     NEBThreadCriticalSection section(0);
//     section.lock();
//     section.unlock();

#ifndef NEBCORE_NEBTHREADCRITICALSECTION_H
#define NEBCORE_NEBTHREADCRITICALSECTION_H

#include <mutex>

#include "NEBCore/NEBThreadLockableResource.h"

class NEBCORE_API NEB_CAPABILITY("mutex") NEBThreadCriticalSection final : public NEBThreadLockableResource
{
public:
    // The argument is reserved.
    explicit NEBThreadCriticalSection(int);

    NEBThreadCriticalSection(NEBThreadCriticalSection const&) = delete;
    NEBThreadCriticalSection& operator=(NEBThreadCriticalSection const&) = delete;

    void lock() NEB_ACQUIRE() override { m_mutex.lock(); }
    void unlock() NEB_RELEASE() override { m_mutex.unlock(); }

private:
    // A cache line of its own, since the members beside it are read while other threads wait.
    alignas(64) std::mutex m_mutex;
};

#endif
