// How the classes of this library fail: by this exception, which the ten functions turn into a status and a
// text.

#ifndef KRY_CRYPTO_INTERFACE_KRYERROR_H
#define KRY_CRYPTO_INTERFACE_KRYERROR_H

#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"

class KRYError : public std::runtime_error
{
public:
    // The text holds no key and no data.
    KRYError(KRYStatus status, std::string const& text) : std::runtime_error(text), m_status(status) {}
    KRYStatus getStatus() const noexcept { return m_status; }

private:
    KRYStatus m_status;
};

// Raises with "text: the system's reason" for a failed system call; errno must still be that call's.
[[noreturn]] void raiseSystemError(KRYStatus status, std::string const& text);

// Raises KRY_ERROR_CRYPTO unless a call into OpenSSL succeeded, and clears the thread's error queue.
void requireCrypto(bool succeeded, char const* operation);

// A terminated text for KRY_CryptoFree, or null.
struct KRYFree
{
    void operator()(char* text) const noexcept { std::free(text); }
};
using KRYText = std::unique_ptr<char, KRYFree>;

// Returns the status of the exception in flight, for use in a catch block, and sets its text. Allocates
// nothing but the text: lack of memory costs that, never the status.
KRYStatus tellFailure(KRYText& text) noexcept;

// Runs work and keeps the text of what it raises. The exception itself could hold a part of the
// small reserve from which exceptions are made when there is no memory.
template <class Work>
void keepReason(KRYText& reason, Work work)
{
    try
    {
        work();
    }
    catch (...)
    {
        tellFailure(reason);
        throw;
    }
}

// Runs work until it fails once: every later run fails for the same reason.
template <class Work>
void runUntilFailure(std::exception_ptr& failure, Work work)
{
    if (failure)
        std::rethrow_exception(failure);
    try
    {
        work();
    }
    catch (...)
    {
        failure = std::current_exception();
        throw;
    }
}

#endif
