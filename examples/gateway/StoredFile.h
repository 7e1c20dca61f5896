// A stored file as clients get it: plain bytes, also where the disk holds sealed ones.
//
// An object belongs to one thread at a time. Failures raise std::system_error, or what the crypto handles
// raise.

#ifndef ARXGATE_STOREDFILE_H
#define ARXGATE_STOREDFILE_H

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <string>

#include <sys/stat.h>

#include "Descriptor.h"

// Whether a client may name a file or folder so: one component, not hidden, nothing that some system or
// decoder takes for a path.
bool isServableName(std::string const& name);

// Opens what lies directly in folder and has that name. Without a descriptor if there is no such file, or if
// it is a symbolic link.
Descriptor openBelow(int folder, std::string const& name, int flags);

class StoredFile
{
public:
    using Sink = std::function<bool(char const* data, std::size_t size)>;

    // Null unless that is a regular file.
    static std::shared_ptr<StoredFile> open(Descriptor file);

    bool isSealed() const { return m_sealed; }
    // In bytes, of the plain content.
    std::uint64_t getSize() const { return m_size; }
    std::time_t getModified() const { return m_status.st_mtime; }
    // Quoted. Changes with the time of the last change, which the file system counts in nanoseconds, and the
    // size.
    std::string getETag() const;

    // Passes length bytes from first on to sink in pieces. False if sink returns false, or if the file
    // doesn't hold them any more as they were written; all bytes passed until then are right.
    bool read(std::uint64_t first, std::uint64_t length, Sink const& sink) const;

private:
    StoredFile(Descriptor file, struct stat const& status);
    bool readPlain(std::uint64_t first, std::uint64_t length, Sink const& sink) const;
    bool readSealed(std::uint64_t first, std::uint64_t length, Sink const& sink) const;

    Descriptor m_file;
    struct stat m_status;
    bool m_sealed;
    std::uint64_t m_size;
};

#endif
