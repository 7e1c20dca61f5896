// The reason of the last failure, kept where a caller can ask for it.

#ifndef KRY_CRYPTO_INTERFACE_KRYLASTFAILURE_H
#define KRY_CRYPTO_INTERFACE_KRYLASTFAILURE_H

#include <string>

#include "KRY_Crypto_Interface/KRYError.h"

class KRYLastFailure
{
public:
    // Runs work, keeps the reason if it raises, and lets the exception pass.
    template <class Work>
    void watch(Work work)
    {
        try
        {
            work();
        }
        catch (...)
        {
            keep(currentFailure().m_text);
            throw;
        }
    }

    // Frees the text too.
    void clear() noexcept { std::string().swap(m_text); }

    // Empty if there was no failure, or no memory to keep its reason.
    std::string const& getText() const { return m_text; }

private:
    void keep(char const* text) noexcept
    {
        try
        {
            m_text = text;
        }
        catch (std::bad_alloc const&)
        {
            m_text.clear();
        }
    }

    std::string m_text;
};

#endif
