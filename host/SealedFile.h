// Encrypted files as the host writes and reads them, in pieces: memory does not grow with the file.

#ifndef ARXHOST_SEALEDFILE_H
#define ARXHOST_SEALEDFILE_H

#include <string>

// Both replace target, and only once it is complete: a failure leaves it as it was.
void sealFile(std::string const& source, std::string const& target);
// Raises if any byte of source is not what sealFile wrote.
void unsealFile(std::string const& source, std::string const& target);

#endif
