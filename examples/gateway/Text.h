// Small operations on texts that several files use.

#ifndef ARXGATE_TEXT_H
#define ARXGATE_TEXT_H

#include <cstddef>
#include <ctime>
#include <string>

// Two lowercase digits a byte.
std::string toHex(void const* data, std::size_t size);
// For a path in a URL: all bytes except letters, digits and - . _ ~ become %XX.
std::string percentEncode(std::string const& text);
// The value of a cookie in a Cookie header; empty if it isn't there.
std::string findCookie(std::string const& cookies, std::string const& name);
// Compares in a time that depends on the sizes alone.
bool isEqual(std::string const& left, std::string const& right);
// strftime of a time in UTC.
std::string formatTime(char const* format, std::time_t time);
// Prints on standard error the exception that is being handled, and where.
void printCurrentException(std::string const& where);

#endif
