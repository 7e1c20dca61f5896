// What a NEBThreadGuard can hold.

#ifndef NEBCORE_NEBTHREADLOCKABLERESOURCE_H
#define NEBCORE_NEBTHREADLOCKABLERESOURCE_H

#include "NEBCore/NEBCoreExport.h"
#include "NEBCore/NEBThreadAnnotations.h"

class NEBCORE_API NEB_CAPABILITY("mutex") NEBThreadLockableResource
{
public:
    virtual ~NEBThreadLockableResource() = default;
    virtual void lock() NEB_ACQUIRE() = 0;
    virtual void unlock() NEB_RELEASE() = 0;
};

#endif
