// Runs work until it fails once. Every later run fails for the same reason.

#ifndef KRY_CRYPTO_INTERFACE_KRYSTICKY_H
#define KRY_CRYPTO_INTERFACE_KRYSTICKY_H

#include <exception>

class KRYSticky
{
public:
    template <class Work>
    void run(Work work)
    {
        if (m_failure)
            std::rethrow_exception(m_failure);
        try
        {
            work();
        }
        catch (...)
        {
            m_failure = std::current_exception();
            throw;
        }
    }

private:
    std::exception_ptr m_failure;
};

#endif
