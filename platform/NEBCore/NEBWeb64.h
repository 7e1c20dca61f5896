// Web64: base64 with the URL and file name safe alphabet of RFC 4648, section 5, without padding. Any thread
// may call.

#ifndef NEBCORE_NEBWEB64_H
#define NEBCORE_NEBWEB64_H

#include <cstddef>
#include <string>

#include "NEBCore/NEBCoreExport.h"

// Returns the length of the text of size bytes, including its terminator. The last argument is reserved.
NEBCORE_API std::size_t NEBWeb64EncodedSize(std::size_t size, int);
// Writes the text of size bytes at data and its terminator. The last argument is reserved.
NEBCORE_API void NEBWeb64Encode(void const* data, std::size_t size, char* target, int);
// Replaces data by the bytes of a text. Returns false and empties data for anything that NEBWeb64Encode
// doesn't write.
NEBCORE_API bool NEBWeb64Decode(char const* text, std::size_t length, std::string& data);

#endif
