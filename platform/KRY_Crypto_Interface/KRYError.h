// How the classes of this library fail: by this exception. The ten functions turn it into a status and a
// text.

#ifndef KRY_CRYPTO_INTERFACE_KRYERROR_H
#define KRY_CRYPTO_INTERFACE_KRYERROR_H

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

// What the exception in flight amounts to; for use in a catch block, and the text lives as long as that.
struct KRYFailure
{
    KRYStatus m_status;
    char const* m_text;
};
KRYFailure currentFailure() noexcept;

#endif
