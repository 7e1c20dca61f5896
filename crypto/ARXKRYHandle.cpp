#include "crypto/ARXKRYHandle.h"

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/NEBDowncastSize.h"
#include "crypto/ARXKRYSession.h"
#include "frame/ARXDetails.h"
#include "frame/ARXRaise.h"

ARXKRYHandle::ARXKRYHandle() : m_kryHandle(nullptr) {}

ARXKRYHandle::~ARXKRYHandle()
{
    try
    {
        closeHandle();
    }
    catch (...)
    {
        return;  // nobody can be told any more
    }
}

std::int32_t ARXKRYHandle::protectData(char const* data, std::size_t size, char** outData,
                                       std::size_t* outSize, void* extra)
{
    std::uint32_t const narrowed = NEBDowncastSize::uint32(size, __FILE__, __LINE__);
    return transferData(KRY_ProtectData, m_kryHandle, data, narrowed, outData, 0, outSize, extra);
}

std::int32_t ARXKRYHandle::unprotectData(char const* data, std::size_t size, char** outData,
                                         std::size_t* outSize, void* extra)
{
    std::uint32_t const narrowed = NEBDowncastSize::uint32(size, __FILE__, __LINE__);
    std::uint32_t const wanted = NEBDowncastSize::uint32(*outSize, __FILE__, __LINE__);
    return transferData(KRY_UnprotectData, m_kryHandle, data, narrowed, outData, wanted, outSize, extra);
}

std::int32_t ARXKRYHandle::getInfo(void* first, void* second, void* third)
{
    return KRY_GetInfo(m_kryHandle, first, second, third);
}

std::int32_t ARXKRYHandle::cryptoFree(void* memory, void* extra)
{
    return KRY_CryptoFree(memory, extra);
}

void ARXKRYHandle::persistentInitialize(char const* cnfgDoc, void* extra)
{
    closeHandle();
    openSession(m_kryHandle, cnfgDoc, extra, NEB_HERE,
                "ARXKRYHandle::persistentInitialize - Error in KRY_PersistentInitialize");
}

void ARXKRYHandle::setInfo(char const* infoDoc, void* extra)
{
    setSessionInfo(m_kryHandle, infoDoc, extra, NEB_HERE, "ARXKRYHandle::setInfo - Error in KRY_SetInfo");
}

void ARXKRYHandle::closeHandle()
{
    if (!m_kryHandle)
        return;

    char* details = nullptr;
    if (!KRY_SUCCEEDED(callForDetails(details, KRY_CloseHandle, &m_kryHandle, nullptr)))
        raiseWithDetails(NEB_HERE, details, "ARXKRYHandle::closeHandle - Error in KRY_CloseHandle");
    m_kryHandle = nullptr;
}
