// Holds a lock as long as it lives.

#ifndef NEBCORE_NEBTHREADGUARD_H
#define NEBCORE_NEBTHREADGUARD_H

#include "NEBCore/NEBThreadLockableResource.h"

class NEB_SCOPED_CAPABILITY NEBThreadGuard
{
public:
    explicit NEBThreadGuard(NEBThreadLockableResource& resource) NEB_ACQUIRE(resource) : m_resource(resource)
    {
        m_resource.lock();
    }
    ~NEBThreadGuard() NEB_RELEASE() { m_resource.unlock(); }

    NEBThreadGuard(NEBThreadGuard const&) = delete;
    NEBThreadGuard& operator=(NEBThreadGuard const&) = delete;

private:
    NEBThreadLockableResource& m_resource;
};

#endif
