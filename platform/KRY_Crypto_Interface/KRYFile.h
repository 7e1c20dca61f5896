// A file descriptor and what is done with it. Interrupted calls are taken up again; failures raise KRYError
// with KRY_ERROR_FILE, the given text and the system's reason.

#ifndef KRY_CRYPTO_INTERFACE_KRYFILE_H
#define KRY_CRYPTO_INTERFACE_KRYFILE_H

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/stat.h>

// Repeats a system call for as long as a signal interrupts it.
template <class Call>
auto retryInterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

class KRYFile
{
public:
    // Opens by openat, always with O_CLOEXEC and O_NOCTTY. directory may be AT_FDCWD. label names the file in
    // all texts.
    KRYFile(std::string label, int directory, char const* path, int flags, mode_t mode = 0);
    ~KRYFile();

    KRYFile(KRYFile const&) = delete;
    KRYFile& operator=(KRYFile const&) = delete;

    int getDescriptor() const { return m_descriptor; }
    struct stat getStatus() const;

    // Fewer bytes than asked for come only where the file ends.
    std::size_t readAt(std::uint64_t offset, unsigned char* target, std::size_t size) const;
    void write(unsigned char const* data, std::size_t size);
    // Until everything is on the disk; of a directory, the names in it.
    void sync();
    // The destructor closes too, but drops the failure.
    void close();

    [[noreturn]] void fail(char const* what) const;

private:
    std::string m_label;
    int m_descriptor;  // -1 when closed
};

#endif
