// What private and shared sessions have in common: opening, setting up, and passing data through. No locks
// here.

#ifndef ARXIUM_CRYPTO_ARXKRYSESSION_H
#define ARXIUM_CRYPTO_ARXKRYSESSION_H

#include <cstddef>
#include <cstdint>

#include "NEBCore/NEBFileLocation.h"

// Opens a session, or raises ARXException with the details; operation stands in its back trace. After a
// failure session is as the crypto interface left it.
void openSession(void*& session, char const* cnfgDoc, void* extra, NEBFileLocation const& where,
                 char const* operation);

// The same for the set-up of an open session, which stays open in any case.
void setSessionInfo(void* session, char const* infoDoc, void* extra, NEBFileLocation const& where,
                    char const* operation);

// KRY_ProtectData or KRY_UnprotectData.
using SessionTransfer = std::int32_t (*)(void* session, char const* data, std::uint32_t size, char** outData,
                                         std::uint32_t* outSize, void* extra);

// Passes data through the session; wantedSize goes in by the out size. Gives the status, and *outSize in any
// case.
std::int32_t transferData(SessionTransfer transfer, void* session, char const* data, std::uint32_t size,
                          char** outData, std::uint32_t wantedSize, std::size_t* outSize, void* extra);

#endif
