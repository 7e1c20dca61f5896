#include "NEBCore/NEBByteBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "NEBCore/NEBOutOfMemoryError.h"

NEBByteBuffer::NEBByteBuffer(std::size_t initialSize, std::size_t increment)
    : m_initialSize(initialSize),
      m_increment(increment),
      m_bytes(m_ownRoom),
      m_count(0),
      m_capacity(sizeof m_ownRoom)
{
}

NEBByteBuffer::~NEBByteBuffer()
{
    if (hasBlock())
        std::free(m_bytes);
}

void NEBByteBuffer::appendChars(char const* bytes, std::size_t size)
{
    if (size == 0)
        return;
    if (size > m_capacity - m_count)
    {
        bool const isOwn = bytes >= m_bytes && bytes < m_bytes + m_capacity;
        std::ptrdiff_t const offset = isOwn ? bytes - m_bytes : 0;
        grow(size > SIZE_MAX - m_count ? SIZE_MAX : m_count + size);
        bytes = isOwn ? m_bytes + offset : bytes;
    }
    std::memcpy(m_bytes + m_count, bytes, size);
    m_count += size;
}

NEBByteBuffer& NEBByteBuffer::operator<<(char const* text)
{
    appendChars(text, std::strlen(text));
    return *this;
}

void NEBByteBuffer::grow(std::size_t size)
{
    // No object is larger than PTRDIFF_MAX, so the sums below it can't wrap.
    std::size_t const growth = std::min<std::size_t>(std::max(m_increment, m_capacity), PTRDIFF_MAX);
    std::size_t const wanted = std::max({size, m_initialSize, m_capacity + growth});
    void* grown = size > PTRDIFF_MAX ? nullptr : std::realloc(hasBlock() ? m_bytes : nullptr, wanted);
    if (!grown)
        NEBOutOfMemoryError(0, nullptr).hurl(NEB_HERE, nullptr, "NEB_THROW");
    if (!hasBlock())
        std::memcpy(grown, m_ownRoom, sizeof m_ownRoom);
    m_bytes = static_cast<char*>(grown);
    m_capacity = wanted;
}
