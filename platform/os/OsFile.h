// An open file, owned by its descriptor.
//
// Operations report failure by their result, with the reason in errno, and throw nothing, so that each caller
// can word its own error. A system call that a signal interrupts is repeated. Sizes and counts are in bytes,
// paths are the system's own names. One object serves one thread at a time.
//
// Example:
//     #include <cerrno>
//     #include <string>
//     OsFile file;
//     if (!file.open("/etc/hostname", OsFile::s_read))
//         throw errno;
//     std::string text(64, '\0');
//     std::int64_t const count = file.read(&text[0], text.size());  // -1 on failure
//     text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));

#ifndef OS_OSFILE_H
#define OS_OSFILE_H

#include <cstddef>
#include <cstdint>

struct OsFileStatus
{
    unsigned m_type;         // one of the types of OsFile
    unsigned m_permissions;  // the lowest nine bits of the mode
    unsigned m_owner;        // the user's number
    std::int64_t m_size;
};

class __attribute__((visibility("default"))) OsFile
{
public:
    // How open opens, joined by |. At least one of the first two.
    static unsigned constexpr s_read = 1;
    static unsigned constexpr s_write = 2;
    static unsigned constexpr s_create = 4;
    static unsigned constexpr s_truncate = 8;
    static unsigned constexpr s_exclusive = 16;  // with s_create: fails if the name is taken, even by a link
    static unsigned constexpr s_directory = 32;  // fails unless it is a directory
    static unsigned constexpr s_noWait = 64;     // doesn't wait until somebody opens a pipe's other end

    // Types that a status holds.
    static unsigned constexpr s_regularFile = 0x8000;
    static unsigned constexpr s_folder = 0x4000;

    // Takes an open descriptor over; -1 makes a closed object.
    explicit OsFile(int descriptor = -1) noexcept;
    // Closes, and drops a failure.
    ~OsFile();

    OsFile(OsFile const&) = delete;
    OsFile& operator=(OsFile const&) = delete;

    // Closes what was open and opens path, relative to directory if one is given. A program that the process
    // starts doesn't inherit the file, and no terminal becomes the process's own. mode is that of a new file,
    // less the umask.
    bool open(char const* path, unsigned flags, unsigned mode = 0666) noexcept;
    bool open(OsFile const& directory, char const* path, unsigned flags, unsigned mode = 0666) noexcept;
    bool isOpen() const noexcept { return m_descriptor != -1; }

    int getDescriptor() const noexcept { return m_descriptor; }
    // Returns the descriptor, which the caller now owns. The object is closed afterwards.
    int release() noexcept;

    bool getStatus(OsFileStatus& status) const noexcept;
    bool setPermissions(unsigned permissions) noexcept;

    // Returns the number of bytes read: fewer than size only where the file ends, or -1 on failure, even
    // after some bytes.
    std::int64_t read(void* target, std::size_t size) noexcept;
    // The same from an offset in the file; the next read begins where it would have begun without this.
    std::int64_t readAt(std::uint64_t offset, void* target, std::size_t size) const noexcept;
    // Returns the number of bytes written: size, or fewer on failure.
    std::size_t write(void const* data, std::size_t size) noexcept;
    // Returns once all is on the disk; for a directory, the names in it.
    bool sync() noexcept;
    // The object is closed even after a failure. Returns true if nothing was open.
    bool close() noexcept;

private:
    int m_descriptor;  // -1 when closed
};

#endif
