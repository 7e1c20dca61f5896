// Signed URLs for serving the bytes of a stored file through a gateway or an external dispatcher.
//
// A URL names the file by its last path component and carries two signatures (HMAC): k of that name, and s of
// the name followed directly by the caller's session identifier. Begin every identifier with "/", which no
// file name holds, and never use an empty one: otherwise the signature of another name can be the one that
// your session needs (see docs/urls.md). The dispatcher id is not signed, and no signature expires.
//
// Names and identifiers are bytes in any encoding. Call between the first Arxium::initialize and the last
// terminate, from any number of threads. NEBAssertError is raised for a path that ends in a separator, a null
// identifier or a refused signature; what the crypto handles and the configuration raise passes through.
//
// Example:
//     #include "frame/Arxium.h"
//     Arxium::initialize();
//     std::string url;  // becomes "?b_action=dc&f=cmVwb3J0LnBkZg&k=...&s=...&did=..."
//     ARXUriDispatchHelper::genGatewayUrlForFile("/data/report.pdf", url, "/0123456789abcdef", false);
//     Arxium::terminate();

#ifndef ARXIUM_URL_ARXURIDISPATCHHELPER_H
#define ARXIUM_URL_ARXURIDISPATCHHELPER_H

#include <cstddef>
#include <string>

#include "frame/ArxiumExport.h"

class NEBByteBuffer;

class ARXIUM_API ARXUriDispatchHelper
{
public:
    ARXUriDispatchHelper();
    virtual ~ARXUriDispatchHelper();

    // Appends "?b_action=dc&f=NAME&k=SIGNATURE&s=SIGNATURE&did=DISPATCHER" to url, or leaves it alone if it
    // fails. The first three values are Web64 text (RFC 4648, section 5, without padding); the last is the
    // setting "dispatcherID" as it is.
    static void generateByteServingUrlFromBasePath(std::string const& path, char const* base64SessionID,
                                                   std::string& url);

    // Replaces url by the same, after the gateway's base path if useBasePath. A failure leaves url empty or
    // at the base path.
    static void genGatewayUrlForFile(std::string const& path, std::string& url, char const* base64SessionID,
                                     bool useBasePath);
    // The same as genGatewayUrlForFile.
    static void genUrlForFile(std::string const& path, std::string& url, char const* base64SessionID,
                              bool useBasePath);
    // As genGatewayUrlForFile, with the external dispatcher's base path.
    static void genExternalDispatcherUrlForFile(std::string const& path, std::string& url,
                                                char const* base64SessionID, bool useBasePath);

private:
    // Replaces output by the signature of size bytes, at least one.
    static void encryptHMAC(char const* data, std::size_t size, NEBByteBuffer& output);
};

#endif
