#include "KRY_Crypto_Interface/KRYFileReader.h"

#include <algorithm>

#include "KRY_Crypto_Interface/KRYError.h"
#include "os/OsFileName.h"

namespace
{
constexpr std::uint64_t s_segmentSize = KRYFileCipher::s_segmentSize;
constexpr std::size_t s_tagSize = KRYFileCipher::s_tagSize;
constexpr std::uint64_t s_sealedSize = s_segmentSize + s_tagSize;
constexpr std::uint64_t s_none = ~std::uint64_t{0};  // number of no segment
constexpr char s_cutOff[] = "the encrypted file is cut off";
}  // namespace

KRYFileReader::KRYFileReader(std::string_view path, std::uint64_t offset, KRYMasterKeys const& keys,
                             std::string const& serviceID)
    : m_name(OsFileName::forReading(std::string(path))),
      m_bodySize(openFile()),
      m_lastNumber(m_bodySize == 0 ? 0 : (m_bodySize - 1) / s_sealedSize),
      m_cipher(readHeader(), keys, serviceID),
      m_position(offset),
      m_number(s_none)
{
    if (offset > m_lastNumber * s_segmentSize && offset > getSize())
        throw KRYError(KRY_ERROR_ARGUMENT, "reading can't begin after the end of the file");
}

std::string_view KRYFileReader::peek()
{
    std::uint64_t const number = std::min(m_position / s_segmentSize, m_lastNumber);
    runUntilFailure(m_failure, [&] { load(number); });
    std::string_view const segment(reinterpret_cast<char const*>(m_segment.data()), m_loaded);
    return segment.substr(static_cast<std::size_t>(m_position - number * s_segmentSize));
}

std::uint64_t KRYFileReader::getSize()
{
    runUntilFailure(m_failure, [&] { load(m_lastNumber); });
    return m_lastNumber * s_segmentSize + m_loaded;
}

// Returns the size of what follows the header.
std::uint64_t KRYFileReader::openFile()
{
    OsFileStatus status;
    // A pipe must not hold the caller up until it is refused.
    if (!m_file.open(m_name.c_str(), OsFile::s_read | OsFile::s_noWait) || !m_file.getStatus(status))
        raiseSystemError(KRY_ERROR_FILE, "file " + m_name + " can't be opened");
    if (status.m_type != OsFile::s_regularFile)
        throw KRYError(KRY_ERROR_FILE, "file " + m_name + " is not a regular file");
    if (status.m_size < std::int64_t{KRYFileCipher::s_headerSize})
        throw KRYError(KRY_ERROR_DAMAGED, s_cutOff);
    return static_cast<std::uint64_t>(status.m_size) - KRYFileCipher::s_headerSize;
}

std::string KRYFileReader::readHeader() const
{
    std::string header(KRYFileCipher::s_headerSize, '\0');
    read(0, header.data(), header.size());
    return header;
}

void KRYFileReader::read(std::uint64_t offset, void* target, std::size_t size) const
{
    std::int64_t const count = m_file.readAt(offset, target, size);
    if (count < 0)
        raiseSystemError(KRY_ERROR_FILE, "file " + m_name + " can't be read");
    if (static_cast<std::size_t>(count) != size)
        throw KRYError(KRY_ERROR_DAMAGED, s_cutOff);
}

// Only the last segment is smaller than the others, and it alone is sealed as the last.
void KRYFileReader::load(std::uint64_t number)
{
    if (number == m_number)
        return;
    bool const last = number == m_lastNumber;
    std::uint64_t const start = number * s_sealedSize;
    auto const size = static_cast<std::size_t>(last ? m_bodySize - start : s_sealedSize);
    m_number = s_none;
    if (size < s_tagSize)
        throw KRYError(KRY_ERROR_DAMAGED, s_cutOff);
    read(KRYFileCipher::s_headerSize + start, m_segment.data(), size);
    if (!m_cipher.open(number, last, m_segment.data(), size - s_tagSize))
        throw KRYError(KRY_ERROR_DAMAGED, "the encrypted file is damaged or belongs to another service");
    m_number = number;
    m_loaded = size - s_tagSize;
}
