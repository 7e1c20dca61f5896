// Text of strangers, such as names in an archive, in forms that are safe to print.

#ifndef ARXHOST_TEXT_H
#define ARXHOST_TEXT_H

#include <string>

// For terminals: control characters, U+0080 to U+009F among them, and bytes that are not UTF-8 become \xNN.
std::string printable(std::string const& text);

// A JSON string (RFC 8259), with U+FFFD for each byte that is not UTF-8.
std::string jsonText(std::string const& text);
// A member "key":"text" of a JSON object. Where text is not UTF-8, a second member "keyHex" has all its
// bytes.
std::string jsonMember(std::string const& key, std::string const& text);

#endif
