#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"

#include <cstdlib>

std::int32_t KRY_CryptoInitialize(char const*, void*, char**)
{
    return -1;
}

std::int32_t KRY_CryptoTerminate(char const*, void*, char**)
{
    return -1;
}

std::int32_t KRY_PersistentInitialize(void** session, char const*, void*, char**)
{
    if (session)
        *session = nullptr;
    return -1;
}

std::int32_t KRY_SetInfo(void*, char const*, void*)
{
    return -1;
}

std::int32_t KRY_GetInfo(void*, void*, void*, void*)
{
    return -1;
}

std::int32_t KRY_ProtectData(void*, char const*, std::uint32_t, char**, std::uint32_t*, void*)
{
    return -1;
}

std::int32_t KRY_UnprotectData(void*, char const*, std::uint32_t, char**, std::uint32_t*, void*)
{
    return -1;
}

std::int32_t KRY_CloseHandle(void**, void*, char**)
{
    return -1;
}

std::int32_t KRY_CryptoFree(void* memory, void*)
{
    std::free(memory);
    return 0;
}

std::int32_t KRY_CryptoGetLastErrorDetails(void*, void*, char**)
{
    return -1;
}
