// A lock between the threads of one process. A thread that holds it must not take it again.

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

    void lock() NEB_ACQUIRE() override { m_mutex.lock(); }
    void unlock() NEB_RELEASE() override { m_mutex.unlock(); }

private:
    std::mutex m_mutex;
};

#endif
