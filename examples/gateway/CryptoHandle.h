// Owners of what the crypto interface returns.

#ifndef ARXGATE_CRYPTOHANDLE_H
#define ARXGATE_CRYPTOHANDLE_H

#include <memory>

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"

struct DestroyHandle
{
    void operator()(ARXSimpleKRYHandleI* handle) const { ARXKRYHandleFactory::destroyHandle(handle); }
};
template <class Interface>
using CryptoHandle = std::unique_ptr<Interface, DestroyHandle>;

// Releases what a handle returned.
struct FreeMemory
{
    ARXSimpleKRYHandleI* m_handle;
    void operator()(char* memory) const { m_handle->cryptoFree(memory, nullptr); }
};
using CryptoMemory = std::unique_ptr<char, FreeMemory>;

#endif
