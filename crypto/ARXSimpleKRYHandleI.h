// A crypto session as its users see it: set up already, and not to be changed.
//
// protectData, unprotectData and getInfo give a status, 0 or more for success; they raise only for
// sizes beyond 32 bits (NEBException). extra is reserved and null. Which threads may call is told by the
// source of the handle (ARXKRYHandleFactory).

#ifndef ARXIUM_CRYPTO_ARXSIMPLEKRYHANDLEI_H
#define ARXIUM_CRYPTO_ARXSIMPLEKRYHANDLEI_H

#include <cstddef>
#include <cstdint>

#include "frame/ArxiumExport.h"

class ARXIUM_API ARXSimpleKRYHandleI
{
public:
    // The virtual operations keep this order: it is the order of their slots.
    virtual ~ARXSimpleKRYHandleI() {}

    // Sends size bytes, which may be 0, at most 4294967295 in one call. What that does, a signature or a
    // piece of a file, was set up before. Both out values start as 0; *outSize, in bytes, is written on
    // failure too, and *outData goes back by cryptoFree, also on failure.
    virtual std::int32_t protectData(char const* data, std::size_t size, char** outData, std::size_t* outSize,
                                     void* extra) = 0;
    // The way back. *outSize also passes a value in, which the crypto interface is given.
    virtual std::int32_t unprotectData(char const* data, std::size_t size, char** outData,
                                       std::size_t* outSize, void* extra) = 0;
    // Passes its arguments to KRY_GetInfo as they are.
    virtual std::int32_t getInfo(void* first, void* second, void* third) = 0;
    // Gives back what protectData, unprotectData or getInfo handed out; null does nothing. The result says
    // nothing that a caller could act on.
    virtual std::int32_t cryptoFree(void* memory, void* extra) = 0;
};

#endif
