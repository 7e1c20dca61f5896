// Owner of memory that the crypto interface returned through a handle. For one thread at a time.

#ifndef ARXIUM_CRYPTO_ARXKRYDATAPTR_H
#define ARXIUM_CRYPTO_ARXKRYDATAPTR_H

#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

class ARXSimpleKRYHandleI;

class ARXKRYDataPtr final : public NEBAutoFactoryPointer<char>
{
public:
    // Borrows handle, which must outlive this guard; owns data, which may be null.
    ARXKRYDataPtr(ARXSimpleKRYHandleI* handle, char* data);
    ~ARXKRYDataPtr() override;

    // Frees by the handle's cryptoFree.
    void destroy(char* pointer) override;

private:
    ARXSimpleKRYHandleI* m_handle;
};

#endif
