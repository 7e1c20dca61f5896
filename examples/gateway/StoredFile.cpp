#include "StoredFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>

#include "path/ARXFmDir.h"

#include "CryptoHandle.h"

namespace
{
std::size_t constexpr s_pieceSize = 65536;
std::size_t constexpr s_longestName = 255;
std::array<char, 6> constexpr s_sealedMark{'K', 'R', 'Y', 'E', 'N', 'C'};

// Sealed files belong to the service of the stream that writes them.
CryptoHandle<ARXKRYHandleI> openSealed(std::string const& path, std::uint64_t offset)
{
    CryptoHandle<ARXKRYHandleI> handle(ARXKRYHandleFactory::createHandle());
    handle->persistentInitialize(
        "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>", nullptr);
    std::string const document = "<setInfoDocument><action>DecipherStream</action><fileInput>" + path +
                                 "</fileInput><offset>" + std::to_string(offset) +
                                 "</offset></setInfoDocument>";
    handle->setInfo(document.c_str(), nullptr);
    return handle;
}

// Authenticated by the last segment.
std::uint64_t getSealedSize(std::string const& path)
{
    auto const handle = openSealed(path, 0);
    char name[] = "size";
    char* text = nullptr;
    std::int32_t const status = handle->getInfo(name, &text, nullptr);
    CryptoMemory const owner(text, {handle.get()});
    if (status < 0)
        throw std::runtime_error("a sealed file is damaged, cut, or sealed under another key");
    return std::stoull(text);
}

bool hasSealedMark(OsFile const& file)
{
    std::array<char, s_sealedMark.size()> begin{};
    return file.readAt(0, begin.data(), begin.size()) == s_sealedMark.size() && begin == s_sealedMark;
}
}  // namespace

bool isServableName(std::string const& name)
{
    auto const isRefused = [](unsigned char c) { return c < ' ' || c == 0x7f || c == '/' || c == '\\'; };
    auto const holds = [&name](char const* text) { return ::strcasestr(name.c_str(), text) != nullptr; };
    return !name.empty() && name.size() <= s_longestName && name.front() != '.' &&
           !ARXFmDir::hasDriveLetter(name.c_str()) && std::none_of(name.begin(), name.end(), isRefused) &&
           !holds("..") && !holds("%2e") && !holds("%2f") && !holds("%5c") && !holds("%00");
}

// O_NONBLOCK, or opening a pipe would wait for its writer.
OsFile openBelow(OsFile const& folder, std::string const& name, int flags)
{
    int const file = ::openat(folder.getDescriptor(), name.c_str(),
                              flags | O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0 && errno != ENOENT && errno != ELOOP && errno != ENOTDIR && errno != ENXIO)
        throw std::system_error(errno, std::generic_category(), name);
    return OsFile(file);
}

std::string getPath(OsFile const& file)
{
    return "/proc/self/fd/" + std::to_string(file.getDescriptor());
}

std::shared_ptr<StoredFile> StoredFile::open(OsFile file)
{
    struct stat status = {};
    if (::fstat(file.getDescriptor(), &status) != 0 || !S_ISREG(status.st_mode))
        return nullptr;
    return std::shared_ptr<StoredFile>(new StoredFile(file.release(), status));
}

StoredFile::StoredFile(int descriptor, struct stat const& status)
    : m_file(descriptor),
      m_status(status),
      m_sealed(hasSealedMark(m_file)),
      m_size(m_sealed ? getSealedSize(getPath(m_file)) : static_cast<std::uint64_t>(status.st_size))
{
}

std::string StoredFile::getETag() const
{
    return '"' + std::to_string(m_status.st_mtim.tv_sec) + '.' + std::to_string(m_status.st_mtim.tv_nsec) +
           '-' + std::to_string(m_status.st_size) + '"';
}

bool StoredFile::read(std::uint64_t first, std::uint64_t length, Sink const& sink) const
{
    return m_sealed ? readSealed(first, length, sink) : readPlain(first, length, sink);
}

bool StoredFile::readPlain(std::uint64_t first, std::uint64_t length, Sink const& sink) const
{
    std::array<char, s_pieceSize> piece;
    for (std::uint64_t const end = first + length; first < end;)
    {
        std::size_t const size = std::min<std::uint64_t>(piece.size(), end - first);
        if (m_file.readAt(first, piece.data(), size) != static_cast<std::int64_t>(size) ||
            !sink(piece.data(), size))
            return false;
        first += size;
    }
    return true;
}

bool StoredFile::readSealed(std::uint64_t first, std::uint64_t length, Sink const& sink) const
{
    auto const handle = openSealed(getPath(m_file), first);
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
