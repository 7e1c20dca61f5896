#include "crypto/ARXKRYHandleFactoryWorker.h"

#include <memory>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/NEBThreadGuard.h"
#include "NEBCore/NEBUtCrc32.h"
#include "crypto/ARXKRYHandle.h"
#include "crypto/ARXKRYSession.h"
#include "crypto/ARXSimpleKRYHandle.h"
#include "frame/ARXAssert.h"
#include "frame/ARXDetails.h"
#include "frame/ARXNew.h"

ARXKRYHandleFactoryWorker::HandleResource::HandleResource() : m_kryHandle(nullptr), m_criticalSection(0) {}

ARXKRYHandleFactoryWorker::HandleResource::~HandleResource()
{
    if (!m_kryHandle)
        return;
    try
    {
        char* details = nullptr;
        callForDetails(details, KRY_CloseHandle, &m_kryHandle, nullptr);
        freeDetails(details);
        m_kryHandle = nullptr;
    }
    catch (...)
    {
        return;  // nobody can be told any more
    }
}

void ARXKRYHandleFactoryWorker::HandleResource::initHandle(char const* cnfgDoc, char const* infoDoc)
{
    openSession(m_kryHandle, cnfgDoc, nullptr, NEB_HERE,
                "ARXKRYHandleFactoryWorker::HandleResource::initHandle - Error in KRY_PersistentInitialize");
    setSessionInfo(m_kryHandle, infoDoc, nullptr, NEB_HERE,
                   "ARXKRYHandleFactoryWorker::HandleResource::initHandle - Error in KRY_SetInfo");
}

void*& ARXKRYHandleFactoryWorker::HandleResource::getKryHandle()
{
    NEB_ASSERT_NAMED(m_kryHandle, "KRY handle not initialized");
    return m_kryHandle;
}

NEBThreadCriticalSection& ARXKRYHandleFactoryWorker::HandleResource::getCriticalSection()
{
    return m_criticalSection;
}

ARXKRYHandleFactoryWorker::ARXKRYHandleFactoryWorker() : m_criticalSection(0) {}

ARXKRYHandleFactoryWorker::~ARXKRYHandleFactoryWorker()
{
    // Without the lock: no other thread may use the worker any more. No resource's destructor raises.
    for (auto const& entry : m_handleResources)
        delete entry.second;
}

ARXSimpleKRYHandleI* ARXKRYHandleFactoryWorker::createHandle(char const* cnfgDoc, char const* infoDoc)
{
    HandleResource& resource = getHandleResource(cnfgDoc, infoDoc);
    ARXSimpleKRYHandleI* handle = nullptr;
    NEB_NEW(handle, new ARXSimpleKRYHandle(resource.getKryHandle(), resource.getCriticalSection()));
    return handle;
}

ARXKRYHandleI* ARXKRYHandleFactoryWorker::createHandle()
{
    ARXKRYHandleI* handle = nullptr;
    NEB_NEW(handle, new ARXKRYHandle);
    return handle;
}

void ARXKRYHandleFactoryWorker::destroyHandle(ARXSimpleKRYHandleI* handle)
{
    delete handle;
}

ARXKRYHandleFactoryWorker::HandleResource& ARXKRYHandleFactoryWorker::getHandleResource(char const* cnfgDoc,
                                                                                        char const* infoDoc)
{
    NEB_ASSERT(cnfgDoc);
    NEB_ASSERT(infoDoc);
    std::uint32_t const key = NEBUtCrc32::crc32(infoDoc, NEBUtCrc32::crc32(cnfgDoc, 0));

    NEBThreadGuard const guard(m_criticalSection);
    auto const known = m_handleResources.find(key);
    if (known != m_handleResources.end())
        return *known->second;

    HandleResource* made = nullptr;
    NEB_NEW(made, new HandleResource);
    std::unique_ptr<HandleResource> owner(made);
    made->initHandle(cnfgDoc, infoDoc);

    // The map has a place before the owner gives the session up, so a lack of memory leaks none.
    HandleResource** place = nullptr;
    NEB_NEW(place, &m_handleResources[key]);
    *place = owner.release();
    return *made;
}
