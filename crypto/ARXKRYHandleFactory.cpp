#include "crypto/ARXKRYHandleFactory.h"

#include "crypto/ARXKRYHandleFactoryWorkerI.h"
#include "frame/ARXAssert.h"

ARXKRYHandleFactoryWorkerI* ARXKRYHandleFactory::m_worker = nullptr;

void ARXKRYHandleFactory::setFactoryWorker(ARXKRYHandleFactoryWorkerI* worker)
{
    m_worker = worker;
}

ARXKRYHandleI* ARXKRYHandleFactory::createHandle()
{
    NEB_ASSERT(m_worker);
    return m_worker->createHandle();
}

ARXSimpleKRYHandleI* ARXKRYHandleFactory::createHandle(char const* cnfgDoc, char const* infoDoc)
{
    NEB_ASSERT(m_worker);
    return m_worker->createHandle(cnfgDoc, infoDoc);
}

void ARXKRYHandleFactory::destroyHandle(ARXSimpleKRYHandleI* handle)
{
    NEB_ASSERT(m_worker);
    m_worker->destroyHandle(handle);
}
