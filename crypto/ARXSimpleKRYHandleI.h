// A crypto session that is set up already. Its users can't change it.
//
// protectData, unprotectData and getInfo return a status, 0 or more for success; they raise NEBException only
// for sizes beyond 32 bits. extra is reserved and null. Sizes are in bytes. ARXKRYHandleFactory says which
// threads may call.
//
// Example:
//     auto const readService = [](ARXSimpleKRYHandleI& handle)
//     {
//         char name[] = "serviceID";
//         char* text = nullptr;
//         handle.getInfo(name, &text, nullptr);
//         handle.cryptoFree(text, nullptr);
//     };
//     static_cast<void>(readService);

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

    // Signs size bytes, or appends them to a file, as the session is set up. size is at most 4294967295 and
    // may be 0. Set *outData to null before. *outSize is written on failure too. Free *outData by cryptoFree,
    // also after a failure.
    virtual std::int32_t protectData(char const* data, std::size_t size, char** outData, std::size_t* outSize,
                                     void* extra) = 0;
    // The inverse of protectData. On entry *outSize is the most bytes wanted; 0 means one segment.
    virtual std::int32_t unprotectData(char const* data, std::size_t size, char** outData,
                                       std::size_t* outSize, void* extra) = 0;
    // Passes its arguments to KRY_GetInfo as they are: a name, the address of a char* for the text, null.
    virtual std::int32_t getInfo(void* first, void* second, void* third) = 0;
    // Frees what protectData, unprotectData or getInfo returned; null does nothing. The result needs no look.
    virtual std::int32_t cryptoFree(void* memory, void* extra) = 0;
};

#endif
