// The library's message resources by number, and its message catalogue. Safe from any thread at any time.

#ifndef ARXRESOURCE_ARXI18NRES_H
#define ARXRESOURCE_ARXI18NRES_H

#include "NEBCore/I18NString.h"

class __attribute__((visibility("default"))) ARXI18NRes
{
public:
    static int constexpr s_messageFile = 0;            // "ArxiumMessages", the library's message file
    static int constexpr s_fileEncryptionSetting = 1;  // "fileEncryption", the name of a setting
    static int constexpr s_fileEncryptionOn = 2;       // "on", its value that turns encryption on
    static int constexpr s_gatewaySetting = 6;         // "gatewayUrl", the name of a setting
    static int constexpr s_dispatcherSetting = 7;      // "externalDispatcherUrl", the name of a setting

    // Returns the text of that number, empty for any other number. It lives as long as the process. The first
    // call makes the messages of the message file known: before it, naming that file finds none.
    static I18NString const& getString(int id);
};

#endif
