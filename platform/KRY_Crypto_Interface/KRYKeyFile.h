// Where the master keys come from: a file of 1 to 64 keys, 32 raw bytes each. docs/keys.md says how they are
// changed.
//
// The setting "cryptoKeyFile" names the file; it must be there. Without the setting it is
// $XDG_STATE_HOME/arxium/master.key, or $HOME/.local/state/arxium/master.key, and is made with one random key
// at the first start; of processes that start at once one makes it and all use it. Either way it must be a
// regular file of 1 to 64 times 32 bytes that belongs to the effective user and is closed to group and
// others. Machines with equal files make and accept the same signatures and read each other's encrypted
// files.

#ifndef KRY_CRYPTO_INTERFACE_KRYKEYFILE_H
#define KRY_CRYPTO_INTERFACE_KRYKEYFILE_H

#include "KRY_Crypto_Interface/KRYSecret.h"

// Raises KRYError.
KRYMasterKeys loadKeyFile();

#endif
