#include "KRY_Crypto_Interface/KRYFileWriter.h"

#include <algorithm>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::size_t s_segmentSize = KRYFileCipher::s_segmentSize;
constexpr std::size_t s_tagSize = KRYFileCipher::s_tagSize;
constexpr unsigned s_mode = 0666;  // less the umask
}  // namespace

KRYFileWriter::KRYFileWriter(std::string_view target, KRYMasterKeys const& keys, std::string const& serviceID)
    : m_cipher(keys, serviceID)
{
    require(m_file.create(std::string(target), s_mode));
    require(m_file.write(m_cipher.getHeader().data(), KRYFileCipher::s_headerSize) ==
            KRYFileCipher::s_headerSize);
}

void KRYFileWriter::append(char const* data, std::size_t size)
{
    runUntilFailure(m_failure, [&] { gather(reinterpret_cast<unsigned char const*>(data), size); });
}

void KRYFileWriter::finish()
{
    runUntilFailure(m_failure,
                    [&]
                    {
                        writeSegment(true);
                        require(m_file.replace());
                    });
}

void KRYFileWriter::gather(unsigned char const* data, std::size_t size)
{
    while (size != 0)
    {
        if (m_filled == s_segmentSize)
            writeSegment(false);
        std::size_t const count = std::min(size, s_segmentSize - m_filled);
        std::copy_n(data, count, m_segment.begin() + m_filled);
        m_filled += count;
        data += count;
        size -= count;
    }
}

void KRYFileWriter::writeSegment(bool last)
{
    m_cipher.seal(m_number++, last, m_segment.data(), m_filled);
    std::size_t const size = m_filled + s_tagSize;
    m_filled = 0;
    require(m_file.write(m_segment.data(), size) == size);
}

void KRYFileWriter::require(bool succeeded) const
{
    if (!succeeded)
        throw KRYError(KRY_ERROR_FILE, m_file.getFailure());
}
