#include "frame/ARXDetails.h"

#include <utility>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"

void freeDetails(char*& details)
{
    // Cleared first, so that it is not freed again if the interface raises.
    if (char* const memory = std::exchange(details, nullptr))
        KRY_CryptoFree(memory, nullptr);
}
