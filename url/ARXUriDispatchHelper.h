// URLs for the byte serving of a stored file through a gateway or an external dispatcher.
//
// A URL names the file by its last path component and carries two digests of the crypto interface: of that
// name, and of the name followed by the caller's session id. Name and id are joined without a separator, so
// ids should be of one fixed length, or begin with a character that no file name holds; the dispatcher id is
// not signed.
//
// Between the first start and the last stop of Arxium any number of threads may call at once. Failures raise
// NEBAssertError, for a path without file name, a null session id or a refused digest, or what the crypto
// handles and the configuration raise.

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

    // Appends "?b_action=dc&f=NAME&k=DIGEST&s=SESSIONDIGEST&did=DISPATCHER" to url; the first three values
    // are Web64 text, the last is the setting "dispatcherID" as it is. A failure leaves url as it was.
    static void generateByteServingUrlFromBasePath(std::string const& path, char const* base64SessionID,
                                                   std::string& url);

    // The same in place of what url holds, behind the gateway's base path if useBasePath. A failure leaves
    // url empty or at the base path.
    static void genGatewayUrlForFile(std::string const& path, std::string& url, char const* base64SessionID,
                                     bool useBasePath);
    // The same as genGatewayUrlForFile.
    static void genUrlForFile(std::string const& path, std::string& url, char const* base64SessionID,
                              bool useBasePath);
    // With the external dispatcher's base path.
    static void genExternalDispatcherUrlForFile(std::string const& path, std::string& url,
                                                char const* base64SessionID, bool useBasePath);

private:
    // Replaces output by the digest of size bytes, at least one.
    static void encryptHMAC(char const* data, std::size_t size, NEBByteBuffer& output);
};

#endif
