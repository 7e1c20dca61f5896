// Text operations for URLs and command lines, for any number of threads.
//
// Example:
//     #include "NEBCore/I18NString.h"
//     #include "NEBCore/NEBByteBuffer.h"
//     NEBByteBuffer query(256, 256);
//     ARXHelper::urlEncode(I18NString("a b+c"), query, false);  // "a+b%2bc", not terminated
//     I18NString url("https://files.example/app/gateway");
//     ARXHelper::removeLastComponentFromUrl(url);               // "https://files.example/app/"

#ifndef ARXIUM_URL_ARXHELPER_H
#define ARXIUM_URL_ARXHELPER_H

#include <cstddef>

#include "frame/ArxiumExport.h"

class I18NString;
class NEBByteBuffer;

class ARXIUM_API ARXHelper
{
public:
    ARXHelper();
    virtual ~ARXHelper();

    // The bytes as terminated Web64 text: base64url without padding (RFC 4648, section 5), which the caller
    // releases by delete[]. Without memory std::bad_alloc is raised.
    static char* createWeb64(NEBByteBuffer const& input);

    // Replaces output by the percent-encoded text of UTF-16 code units, for the query of a URL (RFC 3986,
    // with "+" for a blank as in HTML forms). Letters, digits and ( ) * - . _ stay; all else becomes the
    // escapes of its UTF-8 bytes in small hexadecimal digits, each half of a surrogate pair three of its own.
    // With keepAscii every unit below 0x80 stays, CR and LF too: never put that in an HTTP header unchecked.
    //
    // size is in bytes; an odd last byte is ignored. A null input with a size raises NEBAssertError and
    // leaves output alone; lack of memory raises NEBOutOfMemoryError.
    static void urlEncode(void const* input, std::size_t size, NEBByteBuffer& output, bool keepAscii);
    static void urlEncode(I18NString const& input, NEBByteBuffer& output, bool keepAscii);

    // Removes what follows the last "/". A text without "/", or whose only "/" comes first, stays.
    static void removeLastComponentFromUrl(I18NString& url);

    // Replaces path by the setting "gatewayUrl", cut after its last "/" if removeLastComponent. These three
    // raise what the configuration raises.
    static void getGatewayBasePath(I18NString& path, bool removeLastComponent);
    static void getBasePath(I18NString& path, bool removeLastComponent);  // the same
    // Replaces path by the setting "externalDispatcherUrl".
    static void getExternalDispatcherBasePath(I18NString& path);

    // Replaces every "/" by a backslash and puts each component that holds a blank in double quotes. Never
    // pass the result of untrusted text to a shell: quotes, "$", "&", ";" and all else stay as they are.
    static void fixCommandPath(I18NString& path);
};

#endif
