// A stored file as clients get it: plain bytes, even if the disk holds sealed ones.
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

#include "os/OsFile.h"

// Whether a client may name a file or folder so: one component, not hidden, and no part that some system or
// decoder takes for a path.
bool isServableName(std::string const& name);

// Opens the file of that name directly in folder. The result is closed if there is no such file, or if
// it is a symbolic link.
OsFile openBelow(OsFile const& folder, std::string const& name, int flags);

// A path for libraries that open by name. It leads to this very file, whatever happens to its name meanwhile,
// and needs no escaping anywhere.
std::string getPath(OsFile const& file);

class StoredFile
{
public:
    using Sink = std::function<bool(char const* data, std::size_t size)>;

    // Takes the file over. Null unless it is an open regular file.
    static std::shared_ptr<StoredFile> open(OsFile file);

    bool isSealed() const { return m_sealed; }
    // In bytes, of the plain content.
    std::uint64_t getSize() const { return m_size; }
    std::time_t getModified() const { return m_status.st_mtime; }
    // Quoted. Made of the size and of the time of the last change, in nanoseconds.
    std::string getETag() const;

    // Passes length bytes from first on to sink in pieces. False if sink returns false, or if the file is cut
    // or altered; all bytes passed until then are right.
    bool read(std::uint64_t first, std::uint64_t length, Sink const& sink) const;

private:
    StoredFile(int descriptor, struct stat const& status);
    bool readPlain(std::uint64_t first, std::uint64_t length, Sink const& sink) const;
    bool readSealed(std::uint64_t first, std::uint64_t length, Sink const& sink) const;

    OsFile m_file;
    struct stat m_status;
    bool m_sealed;
    std::uint64_t m_size;
};

#endif
