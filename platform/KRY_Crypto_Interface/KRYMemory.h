// Memory that the interface returns: made by malloc, so KRY_CryptoFree works without a start.

#ifndef KRY_CRYPTO_INTERFACE_KRYMEMORY_H
#define KRY_CRYPTO_INTERFACE_KRYMEMORY_H

#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

// A copy with a zero byte after it. Raises std::bad_alloc.
inline char* copyOut(std::string_view bytes)
{
    auto* const copy = static_cast<char*>(std::malloc(bytes.size() + 1));
    if (!copy)
        throw std::bad_alloc();
    std::memcpy(copy, bytes.data(), bytes.size());
    copy[bytes.size()] = '\0';
    return copy;
}

#endif
