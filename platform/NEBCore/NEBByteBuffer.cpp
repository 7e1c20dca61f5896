#include "NEBCore/NEBByteBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "NEBCore/NEBOutOfMemoryError.h"

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
        grow(size > SIZE_MAX - m_count ? SIZE_MAX : m_count + size);
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
    // No object is larger than PTRDIFF_MAX, so the double of one can't wrap.
    std::size_t const wanted = std::max(size, 2 * m_capacity);
    void* grown = size > PTRDIFF_MAX ? nullptr : std::realloc(hasBlock() ? m_bytes : nullptr, wanted);
    if (!grown)
        NEBOutOfMemoryError(0, nullptr).hurl(NEB_HERE, nullptr, "NEB_THROW");
    if (!hasBlock())
        std::memcpy(grown, m_ownRoom, sizeof m_ownRoom);
    m_bytes = static_cast<char*>(grown);
    m_capacity = wanted;
}
