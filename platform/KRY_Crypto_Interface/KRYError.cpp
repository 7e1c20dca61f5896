#include "KRY_Crypto_Interface/KRYError.h"

#include <cerrno>
#include <system_error>

#include <openssl/err.h>

void raiseSystemError(KRYStatus status, std::string const& text)
{
    throw KRYError(status, text + ": " + std::generic_category().message(errno));
}

void requireCrypto(bool succeeded, char const* operation)
{
    if (succeeded)
        return;
    ERR_clear_error();
    throw KRYError(KRY_ERROR_CRYPTO, std::string("OpenSSL failed in ") + operation);
}
