// UTF-16 text with its terminator as one block of bytes, for comparing, appending, checksums and use as
// memory.
//
// Texts of up to 15 code units are stored inside the object; a longer one owns a heap block of exactly its
// size. Sizes are bytes with the two-byte terminator, unless stated otherwise. Code units are in the
// machine's byte order, and surrogates get no special treatment. The empty buffer differs from one that holds
// only a terminator, as after truncate(0): they are not equal, and only the first is empty().
//
// An object serves one thread at a time, constant operations included: checksums are kept when first
// computed. Without memory NEBOutOfMemoryError is raised, and the buffer is then empty and usable.
//
// Example:
//     #include "NEBCore/I18NString.h"
//     ARNEBI18NBuffer style(I18NString("H1 { color: RED }"));
//     ARNEBI18NBuffer const other(I18NString("h1 { color: red }"));
//     if (style.getCssCrc() == other.getCssCrc())  // true: case does not count
//         style += other;                          // 34 code units, so style.getSize() is 70

#ifndef ARXIUM_TEXT_ARNEBI18NBUFFER_H
#define ARXIUM_TEXT_ARNEBI18NBUFFER_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "frame/ArxiumExport.h"

class I18NString;

class ARXIUM_API ARNEBI18NBuffer
{
public:
    // Sources are copied and may lie in this buffer, here and below. An array ends at its first 0; a null or
    // empty one gives the empty buffer, an empty I18NString its terminator. A single unit may be 0.
    ARNEBI18NBuffer();
    ARNEBI18NBuffer(ARNEBI18NBuffer const& other);
    ARNEBI18NBuffer(I18NString const& text);
    ARNEBI18NBuffer(unsigned short const* text);
    ARNEBI18NBuffer(unsigned short const& unit);
    virtual ~ARNEBI18NBuffer();

    // Keeps the storage if the new content fits it.
    ARNEBI18NBuffer& operator=(ARNEBI18NBuffer const& other);
    ARNEBI18NBuffer& operator=(I18NString const& text);
    ARNEBI18NBuffer& operator=(unsigned short const* text);
    ARNEBI18NBuffer& operator=(unsigned short const& unit);

    // Each append beyond 15 code units takes a new block of exactly the new size, so building a text unit by
    // unit takes quadratic time. An empty source changes nothing.
    ARNEBI18NBuffer& operator+=(ARNEBI18NBuffer const& other);
    ARNEBI18NBuffer& operator+=(I18NString const& text);
    ARNEBI18NBuffer& operator+=(unsigned short const* text);
    ARNEBI18NBuffer& operator+=(unsigned short const& unit);

    std::uint64_t getSize() const { return m_size; }
    // Without the terminator.
    std::uint64_t getDataSize() const { return m_size == 0 ? 0 : m_size - sizeof(unsigned short); }
    // Code units without the terminator; not code points, in spite of the name.
    std::uint64_t getCodepoints() const { return getDataSize() / sizeof(unsigned short); }
    bool empty() const { return m_size == 0; }
    // Always terminated. Owned by the buffer and valid until its next change.
    void const* getBuffer() const
    {
        return m_size == 0 ? m_inlineBuffer : static_cast<void const*>(m_buffer);
    }
    // NEBException is raised for a size above 31 bits, by the second form above 32 bits.
    I18NString getString() const;
    void getString(I18NString& text) const;

    // CRC-32 (RFC 1952, section 8) of all bytes; 0 for the empty buffer. Both checksums belong to the
    // machine's byte order: never exchange them between machines of different order.
    std::uint32_t getCrc() const;
    // The same after std::tolower of each byte in the locale of the process. Texts that differ only in the
    // case of ASCII letters agree. Others can too, because half a code unit may look like a letter.
    std::uint32_t getCssCrc() const;

    bool operator==(ARNEBI18NBuffer const& other) const;
    bool operator!=(ARNEBI18NBuffer const& other) const { return !(*this == other); }
    bool operator==(I18NString const& text) const;
    bool operator!=(I18NString const& text) const { return !(*this == text); }
    // Compares checksums, not text.
    bool operator==(unsigned int crc) const { return getCrc() == crc; }
    bool operator!=(unsigned int crc) const { return !(*this == crc); }
    // False if either has no code units.
    bool startsWith(ARNEBI18NBuffer const& other) const;
    bool endsWith(ARNEBI18NBuffer const& other) const;

    // The storage stays.
    void clear();
    // Sets up storage of that many bytes for the next assignment or append, if the buffer has none yet.
    void reserve(std::uint64_t bytes);
    // Cuts to that many code units; never lengthens. The storage stays.
    void truncate(std::uint64_t units);

protected:
    // As clear, but leaves the object's own 32 bytes alone.
    void reset();
    // Makes room for that many bytes. If they don't fit the storage, its content is lost.
    void createBuffer(std::uint64_t bytes);

private:
    bool hasBlock() const { return m_buffer && m_buffer != static_cast<void const*>(m_inlineBuffer); }
    bool comparesWith(ARNEBI18NBuffer const& other) const;
    ARNEBI18NBuffer& assign(void const* source, std::size_t size);
    ARNEBI18NBuffer& append(void const* source, std::size_t size);

    unsigned short m_inlineBuffer[16];  // starts with 0 when the buffer is empty
    unsigned char* m_buffer;            // null, m_inlineBuffer or a block that this object owns
    std::uint64_t m_capacity;           // what createBuffer was last asked for, also if it failed
    std::uint64_t m_size;
    mutable std::uint32_t m_crc;     // 0 means not known
    mutable std::uint32_t m_cssCrc;  // 0 means not known
};

// Writes the text as I18NString writes it, in UTF-8.
ARXIUM_API std::ostream& operator<<(std::ostream& stream, ARNEBI18NBuffer const& buffer);
ARXIUM_API std::ostream& operator<<(std::ostream& stream, ARNEBI18NBuffer& buffer);

#endif
