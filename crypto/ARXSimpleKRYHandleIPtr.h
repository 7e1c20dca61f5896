// Owner of a handle, which ARXKRYHandleFactory destroys. For one thread at a time.

#ifndef ARXIUM_CRYPTO_ARXSIMPLEKRYHANDLEIPTR_H
#define ARXIUM_CRYPTO_ARXSIMPLEKRYHANDLEIPTR_H

#include "crypto/ARXSimpleKRYHandleI.h"
#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

class ARXSimpleKRYHandleIPtr final : public NEBAutoFactoryPointer<ARXSimpleKRYHandleI>
{
public:
    // Owns handle, which may be null. After the last stop of the library it can't be destroyed and is lost.
    explicit ARXSimpleKRYHandleIPtr(ARXSimpleKRYHandleI* handle);
    ~ARXSimpleKRYHandleIPtr() override;

    void destroy(ARXSimpleKRYHandleI* pointer) override;
};

#endif
