#include "crypto/ARXSimpleKRYHandle.h"

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/NEBDowncastSize.h"
#include "NEBCore/NEBThreadGuard.h"
#include "crypto/ARXKRYSession.h"

ARXSimpleKRYHandle::ARXSimpleKRYHandle(void*& session, NEBThreadCriticalSection& lock)
    : m_kryHandle(session), m_criticalSection(lock)
{
}

ARXSimpleKRYHandle::~ARXSimpleKRYHandle() = default;

std::int32_t ARXSimpleKRYHandle::protectData(char const* data, std::size_t size, char** outData,
                                             std::size_t* outSize, void* extra)
{
    std::uint32_t const narrowed = NEBDowncastSize::uint32(size, __FILE__, __LINE__);
    NEBThreadGuard const guard(m_criticalSection);
    return transferData(KRY_ProtectData, m_kryHandle, data, narrowed, outData, 0, outSize, extra);
}

std::int32_t ARXSimpleKRYHandle::unprotectData(char const* data, std::size_t size, char** outData,
                                               std::size_t* outSize, void* extra)
{
    std::uint32_t const narrowed = NEBDowncastSize::uint32(size, __FILE__, __LINE__);
    std::uint32_t const wanted = NEBDowncastSize::uint32(*outSize, __FILE__, __LINE__);
    NEBThreadGuard const guard(m_criticalSection);
    return transferData(KRY_UnprotectData, m_kryHandle, data, narrowed, outData, wanted, outSize, extra);
}

std::int32_t ARXSimpleKRYHandle::getInfo(void* first, void* second, void* third)
{
    NEBThreadGuard const guard(m_criticalSection);
    return KRY_GetInfo(m_kryHandle, first, second, third);
}

std::int32_t ARXSimpleKRYHandle::cryptoFree(void* memory, void* extra)
{
    return KRY_CryptoFree(memory, extra);
}
