// What private and shared sessions have in common: opening, setting up, and passing data through. Takes no
// lock.

#ifndef ARXIUM_CRYPTO_ARXKRYSESSION_H
#define ARXIUM_CRYPTO_ARXKRYSESSION_H

#include <cstddef>
#include <cstdint>

#include "NEBCore/NEBFileLocation.h"

// Opens a session, or raises ARXException with the details and with operation in its back trace. After a
// failure session is as the crypto interface left it.
void openSession(void*& session, char const* cnfgDoc, void* extra, NEBFileLocation const& where,
                 char const* operation);

// Sets up an open session, which stays open, or raises in the same way.
void setSessionInfo(void* session, char const* infoDoc, void* extra, NEBFileLocation const& where,
                    char const* operation);

// KRY_ProtectData or KRY_UnprotectData.
using SessionTransfer = std::int32_t (*)(void* session, char const* data, std::uint32_t size, char** outData,
                                         std::uint32_t* outSize, void* extra);

// Passes data through the session, with wantedSize as the out size on entry. Returns the status, and writes
// *outSize in any case.
std::int32_t transferData(SessionTransfer transfer, void* session, char const* data, std::uint32_t size,
                          char** outData, std::uint32_t wantedSize, std::size_t* outSize, void* extra);

#endif
