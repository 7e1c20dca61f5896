#include "crypto/ARXKRYSession.h"

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "frame/ARXDetails.h"
#include "frame/ARXRaise.h"

void openSession(void*& session, char const* cnfgDoc, void* extra, NEBFileLocation const& where,
                 char const* operation)
{
    char* details = nullptr;
    if (!KRY_SUCCEEDED(callForDetails(details, KRY_PersistentInitialize, &session, cnfgDoc, extra)))
        raiseWithDetails(where, details, operation);
}

void setSessionInfo(void* session, char const* infoDoc, void* extra, NEBFileLocation const& where,
                    char const* operation)
{
    if (KRY_SUCCEEDED(KRY_SetInfo(session, infoDoc, extra)))
        return;

    // KRY_SetInfo itself returns no details.
    char* details = nullptr;
    callForDetails(details, KRY_CryptoGetLastErrorDetails, session, nullptr);
    raiseWithDetails(where, details, operation);
}

std::int32_t transferData(SessionTransfer transfer, void* session, char const* data, std::uint32_t size,
                          char** outData, std::uint32_t wantedSize, std::size_t* outSize, void* extra)
{
    std::int32_t const status = transfer(session, data, size, outData, &wantedSize, extra);
    *outSize = wantedSize;
    return status;
}
