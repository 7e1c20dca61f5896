// A growing buffer of bytes. One object serves one thread at a time.
//
// Its room at least doubles when it grows. Lack of memory raises NEBOutOfMemoryError and leaves the buffer as
// it was.
//
// Example:
//     #include <string>
//     NEBByteBuffer url(256, 256);
//     url << "https://example.com/" << 'x';
//     url.appendChars("?a=1", 4);
//     std::string const text(url.str(), url.pcount());

#ifndef NEBCORE_NEBBYTEBUFFER_H
#define NEBCORE_NEBBYTEBUFFER_H

#include <cstddef>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API NEBByteBuffer
{
public:
    // The arguments are reserved: 256 bytes need no allocation, and the buffer doubles from there.
    NEBByteBuffer(std::size_t, std::size_t) {}
    ~NEBByteBuffer();

    NEBByteBuffer(NEBByteBuffer const&) = delete;
    NEBByteBuffer& operator=(NEBByteBuffer const&) = delete;

    // Empties the buffer and keeps its room.
    void reset() { m_count = 0; }
    // The bytes, not terminated, never null. Valid until the buffer grows.
    char* str() { return m_bytes; }
    char const* str() const { return m_bytes; }
    // The number of bytes held.
    std::size_t pcount() const { return m_count; }

    // bytes must not lie in this buffer.
    void appendChars(char const* bytes, std::size_t size);
    NEBByteBuffer& operator<<(char byte)
    {
        if (m_count == m_capacity)
            grow(m_count + 1);
        m_bytes[m_count++] = byte;
        return *this;
    }
    // Without its terminator.
    NEBByteBuffer& operator<<(char const* text);

    // Makes room for size bytes in all. Those beyond pcount() may be written before setLength: std::string
    // has no such room, which is why this class does without it.
    void reserve(std::size_t size)
    {
        if (size > m_capacity)
            grow(size);
    }
    // Sets pcount(), and reserves the room if necessary. New bytes are undefined.
    void setLength(std::size_t size)
    {
        reserve(size);
        m_count = size;
    }

private:
    bool hasBlock() const { return m_bytes != m_ownRoom; }
    void grow(std::size_t size);

    char m_ownRoom[256];        // spares short contents an allocation
    char* m_bytes = m_ownRoom;  // or from malloc
    std::size_t m_count = 0;
    std::size_t m_capacity = sizeof m_ownRoom;
};

#endif
