// Where crypto handles come from and go back to.
//
// It serves between the first start and the last stop of Arxium; otherwise the three operations on handles
// raise NEBAssertError. Any number of threads may call them at once, but none while a first start or last
// stop runs.

#ifndef ARXIUM_CRYPTO_ARXKRYHANDLEFACTORY_H
#define ARXIUM_CRYPTO_ARXKRYHANDLEFACTORY_H

#include "frame/ArxiumExport.h"

class ARXKRYHandleFactoryWorkerI;
class ARXKRYHandleI;
class ARXSimpleKRYHandleI;

class ARXIUM_API ARXKRYHandleFactory
{
public:
    ARXKRYHandleFactory() = delete;

    // Installs the maker of handles, which is borrowed; null removes it. For Arxium, and for hosts that bring
    // a maker of their own: it takes no lock.
    static void setFactoryWorker(ARXKRYHandleFactoryWorkerI* worker);

    // A handle with a session of its own, which the caller opens and sets up; for one thread at a time.
    // Both forms raise NEBOutOfMemoryError without memory.
    static ARXKRYHandleI* createHandle();
    // A handle on a session that is set up once for each pair of documents (sessionConfigDocument,
    // setInfoDocument) and stays open until the last stop. The handle may be used from several threads.
    // Documents must hold no user data: each new pair is one more session for good. Raises NEBAssertError for
    // a null document and ARXException if the crypto interface refuses one.
    static ARXSimpleKRYHandleI* createHandle(char const* cnfgDoc, char const* infoDoc);
    // For handles of both forms, before the last stop; null does nothing. Closes the session of a full
    // handle.
    static void destroyHandle(ARXSimpleKRYHandleI* handle);

private:
    static ARXKRYHandleFactoryWorkerI* m_worker;
};

#endif
