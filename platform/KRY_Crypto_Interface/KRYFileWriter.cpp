#include "KRY_Crypto_Interface/KRYFileWriter.h"

#include <algorithm>
#include <atomic>
#include <new>

#include <openssl/crypto.h>
#include <pthread.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
constexpr std::size_t s_segmentSize = KRYFileHeader::s_segmentSize;
constexpr std::size_t s_tagSize = KRYFileHeader::s_tagSize;
constexpr unsigned s_mode = 0666;  // less the umask

std::atomic<unsigned> s_generation{0};

int countForks()
{
    if (::pthread_atfork(nullptr, nullptr, [] { ++s_generation; }) != 0)
        throw std::bad_alloc();
    return 0;
}

// One more in each child than in its parent. A process number would cost a system call at each short write.
unsigned getGeneration()
{
    static int const s_counting = countForks();
    static_cast<void>(s_counting);
    return s_generation;
}
}  // namespace

KRYFileWriter::KRYFileWriter(std::string_view target, KRYMasterKeys const& keys, std::string const& serviceID)
    : m_cipher(KRYFileHeader(keys), serviceID),
      m_generation(getGeneration()),
      m_segment(std::make_unique<unsigned char[]>(s_segmentSize + s_tagSize))
{
    require(m_file.create(std::string(target), s_mode));
    require(m_file.write(m_cipher.getHeader().data(), KRYFileHeader::s_size) == KRYFileHeader::s_size);
}

KRYFileWriter::~KRYFileWriter()
{
    OPENSSL_cleanse(m_segment.get(), s_segmentSize);
}

void KRYFileWriter::append(char const* data, std::size_t size)
{
    run([&] { gather(reinterpret_cast<unsigned char const*>(data), size); });
}

void KRYFileWriter::finish()
{
    run(
        [&]
        {
            writeSegment(true);
            require(m_file.replace());
        });
}

template <class Work>
void KRYFileWriter::run(Work work)
{
    if (m_generation != getGeneration())
        throw KRYError(KRY_ERROR_STATE,
                       "the file is being written by the process that this one was forked from");
    m_sticky.run(work);
}

void KRYFileWriter::gather(unsigned char const* data, std::size_t size)
{
    while (size != 0)
    {
        if (m_filled == s_segmentSize)
            writeSegment(false);
        std::size_t const count = std::min(size, s_segmentSize - m_filled);
        std::copy_n(data, count, m_segment.get() + m_filled);
        m_filled += count;
        data += count;
        size -= count;
    }
}

void KRYFileWriter::writeSegment(bool last)
{
    m_cipher.seal(m_number++, last, m_segment.get(), m_filled);
    std::size_t const size = m_filled + s_tagSize;
    m_filled = 0;
    require(m_file.write(m_segment.get(), size) == size);
}

void KRYFileWriter::require(bool succeeded) const
{
    if (!succeeded)
        throw KRYError(KRY_ERROR_FILE, m_file.getFailure());
}
