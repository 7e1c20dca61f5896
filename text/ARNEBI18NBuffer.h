// UTF-16 text as one block of bytes with its terminator, for comparing, checksums, appending and handing on
// as memory.
//
// Texts of up to 15 code units lie inside the object, longer ones in one heap block of exactly the size
// needed. Sizes are bytes, terminator included, unless they say otherwise. A code unit is in the byte order
// of the machine, and surrogates get no special treatment. No content at all (the empty buffer) differs from
// content of no code units, a lone terminator as truncate(0) leaves it: they aren't equal, and only the first
// is empty().
//
// An object serves one thread at a time, for constant operations too, since the checksums are kept when first
// asked for. Without memory NEBOutOfMemoryError leaves; the buffer is then empty and usable.

#ifndef ARXIUM_TEXT_ARNEBI18NBUFFER_H
#define ARXIUM_TEXT_ARNEBI18NBUFFER_H

#include <cstdint>
#include <iosfwd>

#include "frame/ArxiumExport.h"

class I18NString;

class ARXIUM_API ARNEBI18NBuffer
{
public:
    // The empty buffer, as a null or empty array gives it too; an empty I18NString gives its lone terminator.
    // An array ends at its first 0; one code unit becomes content even if it is 0. Sources are copied and may
    // lie in this buffer itself, here and in += below.
    ARNEBI18NBuffer();
    ARNEBI18NBuffer(ARNEBI18NBuffer const& other);
    ARNEBI18NBuffer(I18NString const& text);
    ARNEBI18NBuffer(unsigned short const* text);
    ARNEBI18NBuffer(unsigned short const& unit);
    // Inline: a call would cost a short value a fifth of its time.
    virtual ~ARNEBI18NBuffer()
    {
        if (hasBlock())
            delete[] m_buffer;
    }

    // Keeps the storage where the new content fits it.
    ARNEBI18NBuffer& operator=(ARNEBI18NBuffer const& other);
    ARNEBI18NBuffer& operator=(I18NString const& text);
    ARNEBI18NBuffer& operator=(unsigned short const* text);
    ARNEBI18NBuffer& operator=(unsigned short const& unit);

    // Content gets a new block of exactly the new size, or the object's own 32 bytes where the sum fits them.
    // An empty source changes nothing.
    ARNEBI18NBuffer& operator+=(ARNEBI18NBuffer const& other);
    ARNEBI18NBuffer& operator+=(I18NString const& text);
    ARNEBI18NBuffer& operator+=(unsigned short const* text);
    ARNEBI18NBuffer& operator+=(unsigned short const& unit);

    std::uint64_t getSize() const { return m_size; }
    // Without the terminator.
    std::uint64_t getDataSize() const { return m_size == 0 ? 0 : m_size - sizeof(unsigned short); }
    // Code units, whatever the name says.
    std::uint64_t getCodepoints() const { return getDataSize() / sizeof(unsigned short); }
    bool empty() const { return m_size == 0; }
    // Terminated also when the buffer is empty; valid until the buffer is changed.
    void const* getBuffer() const
    {
        return m_size == 0 ? m_inlineBuffer : static_cast<void const*>(m_buffer);
    }
    // NEBException leaves for a size over 31 bits, from the second form over 32 bits.
    I18NString getString() const;
    void getString(I18NString& text) const;

    // CRC-32 of all bytes by NEBUtCrc32, worked out once while the content stands; 0 for the empty buffer.
    std::uint32_t getCrc() const;
    // The same over the bytes folded to lower case, one by one: half a code unit that looks like a capital is
    // folded as well, so texts that differ only in the case of ASCII letters agree, and some others do.
    std::uint32_t getCssCrc() const;

    bool operator==(ARNEBI18NBuffer const& other) const;
    bool operator!=(ARNEBI18NBuffer const& other) const { return !(*this == other); }
    bool operator==(I18NString const& text) const;
    bool operator!=(I18NString const& text) const { return !(*this == text); }
    // Compares checksums, not text.
    bool operator==(unsigned int crc) const { return getCrc() == crc; }
    bool operator!=(unsigned int crc) const { return !(*this == crc); }
    // False where one of the two has no code units.
    bool startsWith(ARNEBI18NBuffer const& other) const;
    bool endsWith(ARNEBI18NBuffer const& other) const;

    // The storage stays.
    void clear();
    // Sets up that many bytes in a buffer that has had no storage yet, which saves the next assignment or
    // append one allocation.
    void reserve(std::uint64_t bytes);
    // Cuts to that many code units; never lengthens. The storage stays.
    void truncate(std::uint64_t units);

protected:
    // Forgets the content without touching the object's own 32 bytes.
    void reset();
    // Makes room for that many bytes, the content being lost if they don't fit.
    void createBuffer(std::uint64_t bytes);

private:
    bool hasBlock() const { return m_buffer && m_buffer != static_cast<void const*>(m_inlineBuffer); }
    bool comparesWith(ARNEBI18NBuffer const& other) const;
    ARNEBI18NBuffer& assign(void const* source, std::uint64_t size);
    ARNEBI18NBuffer& append(void const* source, std::uint64_t size);
    [[gnu::noinline]] ARNEBI18NBuffer& appendElsewhere(void const* source, std::uint64_t size);

    unsigned short m_inlineBuffer[16];  // starts with 0 when the buffer is empty
    unsigned char* m_buffer;            // null, m_inlineBuffer or a block of our own
    std::uint64_t m_capacity;  // what m_buffer was last set up for; stays when a block couldn't be had
    std::uint64_t m_size;
    mutable std::uint32_t m_crc;     // 0 for not known
    mutable std::uint32_t m_cssCrc;  // 0 for not known
};

// Writes the text as I18NString is written, in UTF-8.
ARXIUM_API std::ostream& operator<<(std::ostream& stream, ARNEBI18NBuffer const& buffer);
ARXIUM_API std::ostream& operator<<(std::ostream& stream, ARNEBI18NBuffer& buffer);

#endif
