#include "frame/Arxium.h"

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/I18NInitialize.h"
#include "NEBCore/NEBThreadGuard.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleFactoryWorker.h"
#include "frame/ARXAssert.h"
#include "frame/ARXDetails.h"
#include "frame/ARXNew.h"

namespace
{
char constexpr s_initializeDocument[] =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?><initializeDocument><serviceID>Arxium</serviceID></initializeDocument>)";
char constexpr s_terminateDocument[] =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?><terminateDocument><serviceID>Arxium</serviceID></terminateDocument>)";

using CryptoExchange = std::int32_t (*)(char const* document, void* extra, char** details);

bool exchangeWithCrypto(CryptoExchange exchange, char const* document)
{
    char* details = nullptr;
    bool const succeeded = KRY_SUCCEEDED(callForDetails(details, exchange, document, nullptr));
    if (!succeeded)
        freeDetails(details);
    return succeeded;
}

bool initCrypto()
{
    return exchangeWithCrypto(KRY_CryptoInitialize, s_initializeDocument);
}

// No caller could act on a failed stop, so the library stops in any case.
void terminateCrypto()
{
    try
    {
        exchangeWithCrypto(KRY_CryptoTerminate, s_terminateDocument);
    }
    catch (...)
    {
        return;
    }
}

ARXKRYHandleFactoryWorker* s_factoryWorker = nullptr;  // owned from the first start to the last stop

void installWorker()
{
    NEB_NEW(s_factoryWorker, new ARXKRYHandleFactoryWorker);
    ARXKRYHandleFactory::setFactoryWorker(s_factoryWorker);
}

void removeWorker()
{
    ARXKRYHandleFactory::setFactoryWorker(nullptr);
    delete s_factoryWorker;
    s_factoryWorker = nullptr;
}
}  // namespace

std::int16_t Arxium::m_initcount = 0;
bool Arxium::m_full = true;
NEBThreadCriticalSection Arxium::m_instanceLock(0);

void Arxium::initialize()
{
    initialize(true);
}

void Arxium::initialize(bool full)
{
    NEBThreadGuard const guard(m_instanceLock);
    initializeImpl(full);
}

void Arxium::terminate()
{
    NEBThreadGuard const guard(m_instanceLock);
    terminateImpl();
}

void Arxium::initializeImpl(bool full)
{
    if (m_initcount != 0)
    {
        NEB_ASSERT_NAMED(m_initcount < INT16_MAX, "Arxium::initialize - too many starts");
        ++m_initcount;
        return;
    }

    m_full = full;
    if (full)
    {
        I18NInitialize();
        NEB_ASSERT_NAMED(::initCrypto(), "Arxium::initialize - crypto initialization failed");
    }
    installWorker();
    ++m_initcount;
}

void Arxium::terminateImpl()
{
    NEB_ASSERT(m_initcount > 0);
    if (--m_initcount != 0)
        return;

    removeWorker();  // closes the shared sessions, so it comes while the crypto interface is still up
    if (m_full)
    {
        terminateCrypto();
        I18NTerminate();
    }
}
