#include "crypto/ARXSimpleKRYHandleIPtr.h"

#include "crypto/ARXKRYHandleFactory.h"

ARXSimpleKRYHandleIPtr::ARXSimpleKRYHandleIPtr(ARXSimpleKRYHandleI* handle)
    : NEBAutoFactoryPointer<ARXSimpleKRYHandleI>(handle)
{
}

ARXSimpleKRYHandleIPtr::~ARXSimpleKRYHandleIPtr()
{
    giveBack();
}

void ARXSimpleKRYHandleIPtr::destroy(ARXSimpleKRYHandleI* pointer)
{
    ARXKRYHandleFactory::destroyHandle(pointer);
}
