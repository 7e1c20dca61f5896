#include "crypto/ARXKRYDataPtr.h"

#include "crypto/ARXSimpleKRYHandleI.h"

ARXKRYDataPtr::ARXKRYDataPtr(ARXSimpleKRYHandleI* handle, char* data)
    : NEBAutoFactoryPointer<char>(data), m_handle(handle)
{
}

ARXKRYDataPtr::~ARXKRYDataPtr()
{
    giveBack();
    m_handle = nullptr;
}

void ARXKRYDataPtr::destroy(char* pointer)
{
    m_handle->cryptoFree(pointer, nullptr);
}
