// Makes crypto handles and destroys them. docs/crypto-handles.md lists the documents that handles take.
//
// Works between the first start and the last stop of Arxium; otherwise the three operations on handles raise
// NEBAssertError. Any number of threads may call them at once, but none while a first start or last stop
// runs.
//
// Example:
//     #include "crypto/ARXSimpleKRYHandleI.h"
//     ARXSimpleKRYHandleI* const handle = ARXKRYHandleFactory::createHandle(
//         "<sessionConfigDocument><serviceID>REPORTS</serviceID></sessionConfigDocument>",
//         "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>");
//     char* signature = nullptr;
//     std::size_t size = 0;
//     handle->protectData("text", 4, &signature, &size, nullptr);  // 0 or more is success: 32 bytes
//     handle->cryptoFree(signature, nullptr);
//     ARXKRYHandleFactory::destroyHandle(handle);

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

    // Installs the maker of handles, which the caller keeps; null removes it. For Arxium, and for hosts that
    // bring a maker of their own. Takes no lock: no other thread may use the factory meanwhile.
    static void setFactoryWorker(ARXKRYHandleFactoryWorkerI* worker);

    // Returns a handle with a session of its own, which the caller opens and sets up; for one thread at a
    // time. The caller owns the handles of both forms. Both raise NEBOutOfMemoryError without memory.
    static ARXKRYHandleI* createHandle();
    // Returns a handle on a session that is set up once for each pair of documents (sessionConfigDocument,
    // setInfoDocument; terminated bytes) and stays open until the last stop. Several threads may use the
    // handle. Keep user data out of documents: each new pair is one more session until the last stop. Raises
    // NEBAssertError for a null document and ARXException if the crypto interface refuses one.
    static ARXSimpleKRYHandleI* createHandle(char const* cnfgDoc, char const* infoDoc);
    // Takes handles of both forms, before the last stop; null does nothing. Closes the session of a full
    // handle.
    static void destroyHandle(ARXSimpleKRYHandleI* handle);

private:
    static ARXKRYHandleFactoryWorkerI* m_worker;
};

#endif
