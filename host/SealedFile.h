// Encrypted files as the host writes and reads them, in pieces: memory does not grow with the file.
//
// Both replace target, and only once it is complete: a failure or a signal leaves it as it was. The library
// is started. Both raise NEBException that names the file, and Interrupted.

#ifndef ARXHOST_SEALEDFILE_H
#define ARXHOST_SEALEDFILE_H

#include <string>

// source may be "-" for standard input.
void sealFile(std::string const& source, std::string const& target);
// Raises if any byte of source is not what sealFile wrote. target may be "-" for standard output, which gets
// what comes before such a byte.
void unsealFile(std::string const& source, std::string const& target);

#endif
