// The library's message resources by number, and its message catalogue. Safe from any thread at any time.

#ifndef ARXRESOURCE_ARXI18NRES_H
#define ARXRESOURCE_ARXI18NRES_H

#include "NEBCore/I18NString.h"

class __attribute__((visibility("default"))) ARXI18NRes
{
public:
    // 0 the library's message file, "ArxiumMessages"; 1 the name of the file encryption setting,
    // "fileEncryption"; 2 the value that means on, "on"; 6 the name of the gateway URL setting, "gatewayUrl";
    // 7 that of the external dispatcher URL setting, "externalDispatcherUrl". Any other number gives the
    // empty text.
    static I18NString const& getString(int id);
};

#endif
