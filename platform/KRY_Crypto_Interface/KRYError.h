// How the classes of this library fail: by this exception, which the ten functions turn into a status and a
// text.

#ifndef KRY_CRYPTO_INTERFACE_KRYERROR_H
#define KRY_CRYPTO_INTERFACE_KRYERROR_H

#include <exception>
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

// Runs work and keeps in failure what it raises.
template <class Work>
void keepFailure(std::exception_ptr& failure, Work work)
{
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

// The same until work fails once: every later run fails for that reason.
template <class Work>
void runUntilFailure(std::exception_ptr& failure, Work work)
{
    if (failure)
        std::rethrow_exception(failure);
    keepFailure(failure, work);
}

#endif
