// A crypto session that its user opens and sets up. docs/crypto-handles.md lists the documents.
//
// One object serves one thread at a time. Before persistentInitialize the crypto interface refuses all work.
//
// Example:
//     #include "crypto/ARXKRYHandleFactory.h"
//     ARXKRYHandleI* const handle = ARXKRYHandleFactory::createHandle();
//     handle->persistentInitialize(
//         "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>", nullptr);
//     handle->setInfo("<setInfoDocument><action>DecipherStream</action><fileInput>report.sealed</fileInput>"
//                     "</setInfoDocument>", nullptr);
//     ARXKRYHandleFactory::destroyHandle(handle);

#ifndef ARXIUM_CRYPTO_ARXKRYHANDLEI_H
#define ARXIUM_CRYPTO_ARXKRYHANDLEI_H

#include "crypto/ARXSimpleKRYHandleI.h"

class ARXIUM_API ARXKRYHandleI : public ARXSimpleKRYHandleI
{
public:
    // Slots 5 and 6. Both take terminated bytes and raise ARXException, with the crypto interface's details
    // as its message if there are any. extra is reserved and null.

    // Opens a session as a sessionConfigDocument says, after closing the one that is open.
    virtual void persistentInitialize(char const* cnfgDoc, void* extra) = 0;
    // Sets what the session does from now on, by a setInfoDocument. The session stays open if that fails.
    virtual void setInfo(char const* infoDoc, void* extra) = 0;
};

#endif
