#include "KRY_Crypto_Interface/KRYError.h"

#include <cerrno>
#include <cstring>
#include <new>
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

KRYStatus tellFailure(KRYText& text) noexcept
{
    auto const tell = [&text](KRYStatus status, char const* reason)
    {
        text.reset(::strdup(reason));
        return status;
    };
    try
    {
        throw;
    }
    catch (KRYError const& error)
    {
        return tell(error.getStatus(), error.what());
    }
    catch (std::bad_alloc const&)
    {
        return tell(KRY_ERROR_MEMORY, "out of memory");
    }
    catch (...)
    {
        return tell(KRY_ERROR_INTERNAL, "unexpected failure");
    }
}
