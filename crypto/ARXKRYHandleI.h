// A crypto session that its user opens and sets up as well.
//
// One object serves one thread at a time. Before persistentInitialize the interface refuses all work.

#ifndef ARXIUM_CRYPTO_ARXKRYHANDLEI_H
#define ARXIUM_CRYPTO_ARXKRYHANDLEI_H

#include "crypto/ARXSimpleKRYHandleI.h"

class ARXIUM_API ARXKRYHandleI : public ARXSimpleKRYHandleI
{
public:
    // Slots 5 and 6. Both raise ARXException, with the crypto interface's details as its message if there are
    // any.

    // Opens a session as a sessionConfigDocument says, behind closing the one that is open.
    virtual void persistentInitialize(char const* cnfgDoc, void* extra) = 0;
    // Tells the session by a setInfoDocument what to do from now on. It stays open if that fails.
    virtual void setInfo(char const* infoDoc, void* extra) = 0;
};

#endif
