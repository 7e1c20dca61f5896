#include "KRY_Crypto_Interface/KRYFileReader.h"

#include <algorithm>

#include <fcntl.h>
#include <openssl/crypto.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::uint64_t s_segmentSize = KRYFileHeader::s_segmentSize;
constexpr std::uint64_t s_tagSize = KRYFileHeader::s_tagSize;
constexpr std::uint64_t s_sealedSize = s_segmentSize + s_tagSize;
constexpr std::uint64_t s_none = ~std::uint64_t{0};  // number of no segment
constexpr char s_cutOff[] = "the encrypted file is cut off";
}  // namespace

// Without O_NONBLOCK a pipe would hold the caller up until it is refused.
KRYFileReader::KRYFileReader(std::string_view path, std::uint64_t offset, KRYSecret const& masterKey,
                             std::string const& serviceID)
    : m_file("file " + std::string(path), AT_FDCWD, std::string(path).c_str(), O_RDONLY | O_NONBLOCK),
      m_bodySize(getBodySize()),
      m_lastNumber(m_bodySize == 0 ? 0 : (m_bodySize - 1) / s_sealedSize),
      m_cipher(masterKey, readHeader(masterKey), serviceID),
      m_position(offset),
      m_segment(std::make_unique<unsigned char[]>(s_sealedSize)),
      m_number(s_none)
{
    if (offset > m_lastNumber * s_segmentSize && offset > getSize())
        throw KRYError(KRY_ERROR_ARGUMENT, "reading can't begin after the end of the file");
}

KRYFileReader::~KRYFileReader()
{
    OPENSSL_cleanse(m_segment.get(), s_sealedSize);
}

std::string_view KRYFileReader::peek()
{
    std::uint64_t const number = std::min(m_position / s_segmentSize, m_lastNumber);
    m_sticky.run([&] { load(number); });
    std::string_view const segment(reinterpret_cast<char const*>(m_segment.get()), m_loaded);
    return segment.substr(m_position - number * s_segmentSize);
}

std::uint64_t KRYFileReader::getSize()
{
    m_sticky.run([&] { load(m_lastNumber); });
    return m_lastNumber * s_segmentSize + m_loaded;
}

std::uint64_t KRYFileReader::getBodySize() const
{
    struct stat const status = m_file.getStatus();
    if (!S_ISREG(status.st_mode))
        throw KRYError(KRY_ERROR_FILE, "what is to be read is no file");
    if (status.st_size < off_t{KRYFileHeader::s_size})
        throw KRYError(KRY_ERROR_DAMAGED, s_cutOff);
    return static_cast<std::uint64_t>(status.st_size) - KRYFileHeader::s_size;
}

KRYFileHeader KRYFileReader::readHeader(KRYSecret const& masterKey)
{
    KRYFileHeader::Bytes bytes;
    if (m_file.readAt(0, bytes.data(), bytes.size()) != bytes.size())
        throw KRYError(KRY_ERROR_DAMAGED, s_cutOff);
    return KRYFileHeader(masterKey, bytes);
}

// Only the last segment is smaller than the others, and it alone is sealed as the last.
void KRYFileReader::load(std::uint64_t number)
{
    if (number == m_number)
        return;
    bool const last = number == m_lastNumber;
    std::uint64_t const start = number * s_sealedSize;
    std::size_t const size = last ? m_bodySize - start : s_sealedSize;
    m_number = s_none;
    if (size < s_tagSize || m_file.readAt(KRYFileHeader::s_size + start, m_segment.get(), size) != size)
        throw KRYError(KRY_ERROR_DAMAGED, s_cutOff);
    if (!m_cipher.open(number, last, m_segment.get(), size - s_tagSize))
        throw KRYError(KRY_ERROR_DAMAGED, "the encrypted file is damaged or belongs to another service");
    m_number = number;
    m_loaded = size - s_tagSize;
}
