// A file on disk. One object serves one thread at a time. Failure is told by results, with the reason in
// errno; only open raises, std::bad_alloc, and then the object is closed.

#ifndef NEBCORE_NEBFMFILE_H
#define NEBCORE_NEBFMFILE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API NEBFmFile
{
public:
    NEBFmFile();
    // Closes.
    ~NEBFmFile();

    NEBFmFile(NEBFmFile const&) = delete;
    NEBFmFile& operator=(NEBFmFile const&) = delete;

    // Mode 2 creates or truncates for writing (0666 less the umask), mode 3 reads an existing file from its
    // start. Closes what was open. 0 on failure; a directory is one, and so is a mode other than these. Both
    // separators count: a file is made in the folder that \ names too, while for reading the literal name is
    // tried first. A regular file is read up to the size it had when it was opened, so that one that grows
    // still ends; one without a size, as the system shows its own state, is empty.
    int open(std::string const& path, int mode, int);

    // The number of bytes read: less than size only at the end of the file, 0 there, -1 on failure, also
    // where some bytes came before it.
    std::int64_t read(void* buffer, std::size_t size);
    // The number of bytes written: size, or less on failure. Nothing is held back in a buffer.
    std::int64_t write(void const* buffer, std::size_t size);
    // 0 if the system reports an error, and the file is closed all the same; a second call does nothing and
    // answers 1.
    int close();

private:
    bool openForReading(std::string const& path);

    int m_descriptor;          // -1 when closed
    std::int64_t m_remaining;  // bytes that may still be read; -1 for no bound
};

#endif
