// Web64: base64 with the URL and file name safe alphabet of RFC 4648, section 5, without padding. Bytes of
// any kind become text that needs no escaping in a URL.
//
// Sizes are in bytes. Any number of threads may call at once. Only NEBWeb64Decode allocates: it raises
// std::bad_alloc.
//
// Example:
//     #include <string>
//     std::string const name = "report.pdf";
//     std::string text(NEBWeb64EncodedSize(name.size(), 0), '\0');
//     NEBWeb64Encode(name.data(), name.size(), &text[0], 0);
//     std::string decoded;
//     bool const isWeb64 = NEBWeb64Decode(text.data(), text.size() - 1, decoded);  // true

#ifndef NEBCORE_NEBWEB64_H
#define NEBCORE_NEBWEB64_H

#include <cstddef>
#include <string>

#include "NEBCore/NEBCoreExport.h"

// Returns the bytes to allocate for the text of size bytes, its terminator included. The last argument is
// reserved and 0.
NEBCORE_API std::size_t NEBWeb64EncodedSize(std::size_t size, int);
// Writes the text of size bytes at data, and its terminator, to target, which the caller allocates. The last
// argument is reserved and 0.
NEBCORE_API void NEBWeb64Encode(void const* data, std::size_t size, char* target, int);
// Replaces data by the bytes that length characters encode. Returns false, and leaves data empty, for
// anything that NEBWeb64Encode does not write: each row of bytes has one text.
NEBCORE_API bool NEBWeb64Decode(char const* text, std::size_t length, std::string& data);

#endif
