// Text operations for URLs and command lines. Without state: any number of threads may call at once.

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

    // The bytes as Web64 text (RFC 4648, section 5, without padding), terminated. The caller releases it by
    // delete[]. Without memory std::bad_alloc leaves.
    static char* createWeb64(NEBByteBuffer const& input);

    // Replaces output by the percent encoding of UTF-16 code units, for the query part of a URL: letters,
    // digits and ( ) * - . _ stay, a blank becomes "+", all else the escapes of its UTF-8 bytes, with small
    // hexadecimal letters. The halves of a surrogate pair are escaped each on its own, three bytes a half.
    // keepAscii leaves every unit below 0x80 as it is, line ends included.
    //
    // size is in bytes, an odd last one being ignored; input may be null if size is 0, else NEBAssertError is
    // raised and output stays as it was. Without memory NEBOutOfMemoryError is raised.
    static void urlEncode(void const* input, std::size_t size, NEBByteBuffer& output, bool keepAscii);
    static void urlEncode(I18NString const& input, NEBByteBuffer& output, bool keepAscii);

    // Cuts what stands behind the last "/". A text without "/", or with none but its first character, stays.
    static void removeLastComponentFromUrl(I18NString& url);

    // The three operations on base paths raise what the configuration raises.
    // Puts the configured base path of the gateway in path, cut behind its last "/" if removeLastComponent.
    static void getGatewayBasePath(I18NString& path, bool removeLastComponent);
    static void getBasePath(I18NString& path, bool removeLastComponent);  // the same
    // Puts the configured base path of the external dispatcher in path.
    static void getExternalDispatcherBasePath(I18NString& path);

    // Turns every "/" into a backslash and puts each component that holds a blank in double quotes.
    static void fixCommandPath(I18NString& path);
};

#endif
