// What makes the crypto handles that ARXKRYHandleFactory returns. Any number of threads may call at once.
//
// Example:
//     #include "crypto/ARXKRYHandleI.h"
//     auto const useBriefly = [](ARXKRYHandleFactoryWorkerI& maker)
//     {
//         maker.destroyHandle(maker.createHandle());
//     };
//     static_cast<void>(useBriefly);

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

    // Returns a handle on the session that all share who ask with this pair of documents. Both forms return
    // an object, never null, which the caller ends by destroyHandle, or raise.
    virtual ARXSimpleKRYHandleI* createHandle(char const* cnfgDoc, char const* infoDoc) = 0;
    // Returns a handle with a session of its own, not open yet.
    virtual ARXKRYHandleI* createHandle() = 0;
    // Destroys a handle of either form; null does nothing.
    virtual void destroyHandle(ARXSimpleKRYHandleI* handle) = 0;
};

#endif
