#include "KRY_Crypto_Interface/KRYFileWriter.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <openssl/crypto.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::size_t s_segmentSize = KRYFileHeader::s_segmentSize;
constexpr std::size_t s_tagSize = KRYFileHeader::s_tagSize;

std::string_view nameIn(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

std::string directoryOf(std::string_view path)
{
    std::string const directory(path.substr(0, path.size() - nameIn(path).size()));
    return directory.empty() ? "." : directory;
}

// The target's name without its directory.
std::string replaceableName(KRYFile const& directory, std::string_view target)
{
    std::string name(nameIn(target));
    struct stat status;
    bool const there =
        retryInterrupted(
            [&] {
                return ::fstatat(directory.getDescriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
            }) == 0;
    if (!there && (errno != ENOENT || name.empty()))
        raiseSystemError(KRY_ERROR_FILE, "file " + name + " can't be made");
    if (there && !S_ISREG(status.st_mode))
        throw KRYError(KRY_ERROR_FILE, "file " + name + " can't be made: that is something else already");
    return name;
}
}  // namespace

KRYFileWriter::KRYFileWriter(std::string_view target, KRYSecret const& masterKey,
                             std::string const& serviceID)
    : m_directory("directory " + directoryOf(target), AT_FDCWD, directoryOf(target).c_str(),
                  O_RDONLY | O_DIRECTORY),
      m_file(m_directory, replaceableName(m_directory, target), 0666),
      m_header(masterKey),
      m_cipher(masterKey, m_header, serviceID),
      m_segment(std::make_unique<unsigned char[]>(s_segmentSize + s_tagSize))
{
    m_file.write(m_header.getBytes().data(), KRYFileHeader::s_size);
}

KRYFileWriter::~KRYFileWriter()
{
    OPENSSL_cleanse(m_segment.get(), s_segmentSize);
}

void KRYFileWriter::append(char const* data, std::size_t size)
{
    m_sticky.run([&] { gather(reinterpret_cast<unsigned char const*>(data), size); });
}

void KRYFileWriter::finish()
{
    m_sticky.run(
        [&]
        {
            writeLast();
            m_file.replace();
        });
}

void KRYFileWriter::gather(unsigned char const* data, std::size_t size)
{
    while (size != 0)
    {
        if (m_filled == s_segmentSize)
            flushSegment();
        std::size_t const count = std::min(size, s_segmentSize - m_filled);
        m_sealed = count == s_segmentSize;
        if (m_sealed)
            m_cipher.seal(m_number, false, data, count, m_segment.get());
        else
            std::copy_n(data, count, m_segment.get() + m_filled);
        m_filled += count;
        data += count;
        size -= count;
    }
}

void KRYFileWriter::flushSegment()
{
    if (!m_sealed)
        m_cipher.seal(m_number, false, m_segment.get(), m_filled, m_segment.get());
    m_file.write(m_segment.get(), m_filled + s_tagSize);
    m_filled = 0;
    ++m_number;
}

void KRYFileWriter::writeLast()
{
    if (m_sealed)
        requireCrypto(m_cipher.open(m_number, false, m_segment.get(), m_filled), "opening a segment");
    m_cipher.seal(m_number, true, m_segment.get(), m_filled, m_segment.get());
    m_file.write(m_segment.get(), m_filled + s_tagSize);
}
