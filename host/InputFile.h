// Files that are read in pieces: memory does not grow with them.

#ifndef ARXHOST_INPUTFILE_H
#define ARXHOST_INPUTFILE_H

#include <cstddef>
#include <functional>
#include <string>

// Takes the next bytes, at least one, which are its own until it returns.
using Sink = std::function<void(char*, std::size_t)>;

// Gives sink the contents of a file, or of standard input if path is "-". Raises NEBException that names the
// path, Interrupted also while it waits for a pipe, and what sink raises.
void readFile(std::string const& path, Sink const& sink);

#endif
