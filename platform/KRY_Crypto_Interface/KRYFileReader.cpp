#include "KRY_Crypto_Interface/KRYFileReader.h"

#include <fcntl.h>
#include <openssl/crypto.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::size_t s_tagSize = KRYFileHeader::s_tagSize;
constexpr std::size_t s_sealedSize = KRYFileHeader::s_segmentSize + s_tagSize;
}  // namespace

// Without O_NONBLOCK a pipe would hold the caller up until it is refused.
KRYFileReader::KRYFileReader(std::string_view path, KRYSecret const& masterKey, std::string const& serviceID)
    : m_file("file " + std::string(path), AT_FDCWD, std::string(path).c_str(), O_RDONLY | O_NONBLOCK),
      m_cipher(masterKey, readHeader(masterKey), serviceID),
      m_segment(std::make_unique<unsigned char[]>(s_sealedSize + 1))
{
}

KRYFileReader::~KRYFileReader()
{
    OPENSSL_cleanse(m_segment.get(), s_sealedSize + 1);
}

std::string_view KRYFileReader::peek()
{
    m_sticky.run(
        [&]
        {
            if (m_position == m_end && !m_atLast)
                readSegment();
        });
    return {reinterpret_cast<char const*>(m_segment.get()) + m_position, m_end - m_position};
}

KRYFileHeader KRYFileReader::readHeader(KRYSecret const& masterKey)
{
    if (!S_ISREG(m_file.getStatus().st_mode))
        throw KRYError(KRY_ERROR_FILE, "what is to be read is no file");
    KRYFileHeader::Bytes bytes{};
    m_file.read(bytes.data(),
                bytes.size());  // what is cut off is missed in the comparison or the first segment
    return KRYFileHeader(masterKey, bytes);
}

void KRYFileReader::readSegment()
{
    std::size_t const carried = m_number == 0 ? 0 : 1;
    if (carried != 0)
        m_segment[0] = m_segment[s_sealedSize];
    std::size_t const count = carried + m_file.read(&m_segment[carried], s_sealedSize + 1 - carried);
    bool const last = count <= s_sealedSize;
    std::size_t const size = last ? count : s_sealedSize;
    if (size < s_tagSize)
        throw KRYError(KRY_ERROR_DAMAGED, "the encrypted file is cut off");
    if (!m_cipher.open(m_number, last, m_segment.get(), size - s_tagSize))
        throw KRYError(KRY_ERROR_DAMAGED, "the encrypted file is damaged or belongs to another service");
    ++m_number;
    m_position = 0;
    m_end = size - s_tagSize;
    m_atLast = last;
}
