// Signed URLs as the host makes and checks them. The library is started.

#ifndef ARXHOST_SIGNEDURL_H
#define ARXHOST_SIGNEDURL_H

#include <string>
#include <vector>

// The URL of an existing regular file, with the configured base path of the gateway or of the external
// dispatcher. Raises NEBException for anything else.
std::string signFile(std::string const& file, std::string const& session, bool dispatcher);

// The values of url that differ from what the library makes for the file named in it and that session, in
// words; none if the URL is right. The text before the query is not signed. It may be a base path from the
// settings, or any text without "?" and "#".
std::vector<std::string> findWrongValues(std::string const& url, std::string const& session);

#endif
