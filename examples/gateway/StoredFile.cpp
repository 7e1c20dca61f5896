#include "StoredFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>

#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "path/ARXFmDir.h"

namespace
{
std::size_t constexpr s_pieceSize = 65536;
std::size_t constexpr s_longestName = 255;
std::array<char, 6> constexpr s_sealedMark{'K', 'R', 'Y', 'E', 'N', 'C'};

struct DestroyHandle
{
    void operator()(ARXKRYHandleI* handle) const { ARXKRYHandleFactory::destroyHandle(handle); }
};
using Handle = std::unique_ptr<ARXKRYHandleI, DestroyHandle>;

// Sealed files belong to the service of the stream that writes them.
Handle openSealed(std::string const& path, std::uint64_t offset)
{
    Handle handle(ARXKRYHandleFactory::createHandle());
    handle->persistentInitialize(
        "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>", nullptr);
    std::string const document = "<setInfoDocument><action>DecipherStream</action><fileInput>" + path +
                                 "</fileInput><offset>" + std::to_string(offset) +
                                 "</offset></setInfoDocument>";
    handle->setInfo(document.c_str(), nullptr);
    return handle;
}

// Releases what a handle returned.
struct FreeMemory
{
    ARXKRYHandleI* m_handle;
    void operator()(char* memory) const { m_handle->cryptoFree(memory, nullptr); }
};
using CryptoMemory = std::unique_ptr<char, FreeMemory>;

// Authenticated by the last segment.
std::uint64_t getSealedSize(std::string const& path)
{
    Handle const handle = openSealed(path, 0);
    char name[] = "size";
    char* text = nullptr;
    std::int32_t const status = handle->getInfo(name, &text, nullptr);
    CryptoMemory const owner(text, {handle.get()});
    if (status < 0)
        throw std::runtime_error("a sealed file is damaged, cut, or sealed under another key");
    return std::stoull(text);
}

bool hasSealedMark(int file)
{
    std::array<char, s_sealedMark.size()> begin{};
    return ::pread(file, begin.data(), begin.size(), 0) == static_cast<ssize_t>(begin.size()) &&
           begin == s_sealedMark;
}
}  // namespace

bool isServableName(std::string const& name)
{
    if (name.empty() || name.size() > s_longestName || name.front() == '.' ||
        ARXFmDir::hasDriveLetter(name.c_str()))
        return false;
    if (std::any_of(name.begin(), name.end(),
                    [](unsigned char c) { return c < ' ' || c == 0x7f || c == '/' || c == '\\'; }))
        return false;
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    auto const holds = [&lower](char const* text) { return lower.find(text) != std::string::npos; };
    return !holds("..") && !holds("%2e") && !holds("%2f") && !holds("%5c") && !holds("%00");
}

// O_NONBLOCK, or opening a pipe would wait for its writer.
Descriptor openBelow(int folder, std::string const& name, int flags)
{
    Descriptor file(::openat(folder, name.c_str(), flags | O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno != ENOENT && errno != ELOOP && errno != ENOTDIR)
        throw std::system_error(errno, std::generic_category(), name);
    return file;
}

std::shared_ptr<StoredFile> StoredFile::open(Descriptor file)
{
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return nullptr;
    return std::shared_ptr<StoredFile>(new StoredFile(std::move(file), status));
}

StoredFile::StoredFile(Descriptor file, struct stat const& status)
    : m_file(std::move(file)),
      m_status(status),
      m_sealed(hasSealedMark(m_file.get())),
      m_size(m_sealed ? getSealedSize(m_file.getPath()) : static_cast<std::uint64_t>(status.st_size))
{
}

std::string StoredFile::getETag() const
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "\"%llx.%lx-%llx\"",
                  static_cast<unsigned long long>(m_status.st_mtim.tv_sec),
                  static_cast<unsigned long>(m_status.st_mtim.tv_nsec),
                  static_cast<unsigned long long>(m_status.st_size));
    return text.data();
}

bool StoredFile::read(std::uint64_t first, std::uint64_t length, Sink const& sink) const
{
    return m_sealed ? readSealed(first, length, sink) : readPlain(first, length, sink);
}

bool StoredFile::readPlain(std::uint64_t first, std::uint64_t length, Sink const& sink) const
{
    std::array<char, s_pieceSize> piece;
    for (std::uint64_t done = 0; done < length;)
    {
        ssize_t const count =
            ::pread(m_file.get(), piece.data(), std::min<std::uint64_t>(piece.size(), length - done),
                    static_cast<off_t>(first + done));
        if (count <= 0 || !sink(piece.data(), static_cast<std::size_t>(count)))
            return false;
        done += static_cast<std::uint64_t>(count);
    }
    return true;
}

bool StoredFile::readSealed(std::uint64_t first, std::uint64_t length, Sink const& sink) const
{
    Handle const handle = openSealed(m_file.getPath(), first);
    while (length != 0)
    {
        char* data = nullptr;
        std::size_t size = std::min<std::uint64_t>(length, s_pieceSize);
        std::int32_t const status = handle->unprotectData(nullptr, 0, &data, &size, nullptr);
        CryptoMemory const owner(data, {handle.get()});
        if (status < 0 || size == 0 || !sink(data, size))
            return false;
        length -= size;
    }
    return true;
}
