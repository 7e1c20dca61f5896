// A file on disk.
//
// Failures are returned, with the reason in errno; only open raises, std::bad_alloc, and then the object is
// closed. Sizes and counts are in bytes. One object serves one thread at a time.

#ifndef NEBCORE_NEBFMFILE_H
#define NEBCORE_NEBFMFILE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "NEBCore/NEBCoreExport.h"
#include "os/OsFile.h"

class NEBCORE_API NEBFmFile
{
public:
    // Modes of open.
    static int constexpr s_createOrTruncate = 2;
    static int constexpr s_readExisting = 3;

    NEBFmFile();
    // Closes.
    ~NEBFmFile();

    NEBFmFile(NEBFmFile const&) = delete;
    NEBFmFile& operator=(NEBFmFile const&) = delete;

    // Closes what was open, then opens path for writing, created with mode 0666 less the umask, or for
    // reading from its start. Returns 0 on failure, also for a directory and for any other mode. The last
    // argument is reserved. Both / and \ separate in path; for reading, the literal name is tried first. A
    // regular file is read up to the size that it had when it was opened, so that reading ends while the file
    // grows. Files that the system shows with size 0, as in /proc, are empty.
    int open(std::string const& path, int mode, int);

    // Returns the number of bytes read: less than size only at the end of the file, 0 there, or -1 on
    // failure, even after some bytes.
    std::int64_t read(void* buffer, std::size_t size);
    // Returns the number of bytes written: size, or less on failure. Nothing is buffered.
    std::int64_t write(void const* buffer, std::size_t size);
    // Returns 0 if the system reports an error; the file is closed even then. A second call does nothing and
    // returns 1.
    int close();

private:
    bool openForReading(std::string const& path);

    OsFile m_file;
    std::int64_t m_remaining;  // bytes that may still be read; -1 for no bound
};

#endif
