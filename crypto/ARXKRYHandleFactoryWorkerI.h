// The maker of crypto handles behind ARXKRYHandleFactory. Any number of threads may call at once.

#ifndef ARXIUM_CRYPTO_ARXKRYHANDLEFACTORYWORKERI_H
#define ARXIUM_CRYPTO_ARXKRYHANDLEFACTORYWORKERI_H

#include "frame/ArxiumExport.h"

class ARXKRYHandleI;
class ARXSimpleKRYHandleI;

class ARXIUM_API ARXKRYHandleFactoryWorkerI
{
public:
    // The virtual operations keep this order: it is the order of their slots.
    virtual ~ARXKRYHandleFactoryWorkerI() {}

    // A handle on the session that is shared by all who ask with this pair of documents. Both forms give an
    // object that the caller returns by destroyHandle, never null, or raise.
    virtual ARXSimpleKRYHandleI* createHandle(char const* cnfgDoc, char const* infoDoc) = 0;
    // A handle with a session of its own, not open yet.
    virtual ARXKRYHandleI* createHandle() = 0;
    // Null does nothing.
    virtual void destroyHandle(ARXSimpleKRYHandleI* handle) = 0;
};

#endif
