#include "text/ARNEBI18NBuffer.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <new>
#include <ostream>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBDowncastSize.h"
#include "NEBCore/NEBUtCrc32.h"
#include "frame/ARXAssert.h"
#include "frame/ARXNew.h"

namespace
{
std::size_t constexpr s_unitSize = sizeof(unsigned short);

// Sizes are 64 bits wide on every machine. Those of blocks that exist fit the machine's own type.
std::size_t inMemory(std::uint64_t size)
{
    return static_cast<std::size_t>(size);
}

unsigned char* allocate(std::uint64_t size)
{
    if (inMemory(size) != size)
        throw std::bad_alloc();
    return new unsigned char[inMemory(size)];
}

// The size in bytes with the terminator; 0 for no text.
std::size_t sizeOf(unsigned short const* text)
{
    if (!text || *text == 0)
        return 0;
    std::size_t units = 1;
    while (text[units] != 0)
        ++units;
    return (units + 1) * s_unitSize;
}

std::size_t sizeOf(I18NString const& text)
{
    return static_cast<std::size_t>(text.size());
}

// The ranges may overlap.
void moveBytes(unsigned char* target, void const* source, std::size_t size)
{
    if (size != 0)  // memmove takes no null pointer
        std::memmove(target, source, size);
}

// Most bytes don't depend on the locale: none has letters below "A", and "a" to "z" stay.
unsigned char toLower(unsigned char byte)
{
    bool const isKnown = byte < 'A' || (byte >= 'a' && byte <= 'z');
    return isKnown ? byte : static_cast<unsigned char>(std::tolower(byte));
}

// Piece by piece, because a checksum call for each byte would take three times as long.
std::uint32_t foldedCrc(unsigned char const* bytes, std::size_t size)
{
    std::uint32_t crc = 0;
    unsigned char folded[256];
    for (std::size_t done = 0; done < size; done += sizeof folded)
    {
        std::size_t const count = std::min(size - done, sizeof folded);
        std::transform(bytes + done, bytes + done + count, folded, toLower);
        crc = NEBUtCrc32::crc32(crc, folded, count);
    }
    return crc;
}
}  // namespace

ARNEBI18NBuffer::ARNEBI18NBuffer() : m_buffer(nullptr), m_capacity(0), m_size(0), m_crc(0), m_cssCrc(0)
{
    m_inlineBuffer[0] = 0;
}

ARNEBI18NBuffer::ARNEBI18NBuffer(ARNEBI18NBuffer const& other) : ARNEBI18NBuffer()
{
    *this = other;
}

ARNEBI18NBuffer::ARNEBI18NBuffer(I18NString const& text) : ARNEBI18NBuffer()
{
    *this = text;
}

ARNEBI18NBuffer::ARNEBI18NBuffer(unsigned short const* text) : ARNEBI18NBuffer()
{
    *this = text;
}

ARNEBI18NBuffer::ARNEBI18NBuffer(unsigned short const& unit) : ARNEBI18NBuffer()
{
    *this = unit;
}

ARNEBI18NBuffer::~ARNEBI18NBuffer()
{
    if (hasBlock())
        delete[] m_buffer;
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator=(ARNEBI18NBuffer const& other)
{
    return this == &other ? *this : assign(other.m_buffer, inMemory(other.m_size));
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator=(I18NString const& text)
{
    return assign(text.getExternalBuffer(), sizeOf(text));
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator=(unsigned short const* text)
{
    return assign(text, sizeOf(text));
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator=(unsigned short const& unit)
{
    unsigned short const text[] = {unit, 0};
    return assign(text, sizeof text);
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator+=(ARNEBI18NBuffer const& other)
{
    return append(other.m_buffer, inMemory(other.m_size));
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator+=(I18NString const& text)
{
    return append(text.getExternalBuffer(), sizeOf(text));
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator+=(unsigned short const* text)
{
    return append(text, sizeOf(text));
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator+=(unsigned short const& unit)
{
    unsigned short const text[] = {unit, 0};
    return append(text, sizeof text);
}

I18NString ARNEBI18NBuffer::getString() const
{
    if (m_size == 0)
        return I18NString();
    std::int32_t const size = NEBDowncastSize::int32(inMemory(m_size), __FILE__, __LINE__);
    I18NString text(size, nullptr, nullptr);
    text.setTo(m_buffer, static_cast<std::uint32_t>(size));
    return text;
}

void ARNEBI18NBuffer::getString(I18NString& text) const
{
    if (m_size == 0)
        text.erase(0, -1);
    else
        text.setTo(m_buffer, NEBDowncastSize::uint32(inMemory(m_size), __FILE__, __LINE__));
}

std::uint32_t ARNEBI18NBuffer::getCrc() const
{
    if (m_crc == 0 && m_size != 0 && m_buffer)
        m_crc = NEBUtCrc32::crc32(0, m_buffer, inMemory(m_size));
    return m_crc;
}

std::uint32_t ARNEBI18NBuffer::getCssCrc() const
{
    if (m_cssCrc == 0 && m_size != 0 && m_buffer)
        m_cssCrc = foldedCrc(m_buffer, inMemory(m_size));
    return m_cssCrc;
}

bool ARNEBI18NBuffer::operator==(ARNEBI18NBuffer const& other) const
{
    if (this == &other)
        return true;  // also without the block that createBuffer couldn't have
    return m_size == other.m_size &&
           (m_size == 0 || std::memcmp(m_buffer, other.m_buffer, inMemory(m_size)) == 0);
}

bool ARNEBI18NBuffer::operator==(I18NString const& text) const
{
    return m_size == sizeOf(text) &&
           (m_size == 0 || std::memcmp(m_buffer, text.getExternalBuffer(), inMemory(m_size)) == 0);
}

bool ARNEBI18NBuffer::startsWith(ARNEBI18NBuffer const& other) const
{
    return comparesWith(other) && std::memcmp(m_buffer, other.m_buffer, inMemory(other.getDataSize())) == 0;
}

bool ARNEBI18NBuffer::endsWith(ARNEBI18NBuffer const& other) const
{
    return comparesWith(other) && std::memcmp(m_buffer + (m_size - other.m_size), other.m_buffer,
                                              inMemory(other.getDataSize())) == 0;
}

void ARNEBI18NBuffer::clear()
{
    reset();
    m_inlineBuffer[0] = 0;
}

void ARNEBI18NBuffer::reserve(std::uint64_t bytes)
{
    if (m_capacity == 0)
        createBuffer(bytes);
}

void ARNEBI18NBuffer::truncate(std::uint64_t units)
{
    if (units >= getCodepoints())
        return;
    NEB_ASSERT(m_buffer);
    std::uint64_t const kept = units * s_unitSize;
    std::memset(m_buffer + kept, 0, s_unitSize);
    reset();
    m_size = kept + s_unitSize;
}

void ARNEBI18NBuffer::reset()
{
    m_size = 0;
    m_crc = 0;
    m_cssCrc = 0;
}

void ARNEBI18NBuffer::createBuffer(std::uint64_t bytes)
{
    if (bytes > m_capacity)
    {
        if (hasBlock())
            delete[] m_buffer;
        m_buffer = nullptr;
        m_capacity = 0;
    }
    if (m_buffer || bytes == 0)
        return;

    m_capacity = bytes;
    if (bytes <= sizeof m_inlineBuffer)
        m_buffer = reinterpret_cast<unsigned char*>(m_inlineBuffer);
    else
        NEB_NEW(m_buffer, allocate(bytes));
}

// Whether both have code units and other isn't the longer one.
bool ARNEBI18NBuffer::comparesWith(ARNEBI18NBuffer const& other) const
{
    return m_buffer && other.m_buffer && other.m_size > s_unitSize && m_size >= other.m_size;
}

ARNEBI18NBuffer& ARNEBI18NBuffer::assign(void const* source, std::size_t size)
{
    // A source in our own storage fits it, so that it is still whole when it is moved.
    if (!m_buffer || size > m_capacity)
    {
        clear();
        createBuffer(size);
    }
    moveBytes(m_buffer, source, size);
    reset();
    m_size = size;
    if (size == 0 || hasBlock())
        m_inlineBuffer[0] = 0;
    return *this;
}

ARNEBI18NBuffer& ARNEBI18NBuffer::append(void const* source, std::size_t size)
{
    std::size_t const kept = inMemory(getDataSize());
    if (size == 0 || kept == 0)
        return size == 0 ? *this : assign(source, size);

    unsigned char* const old = m_buffer;
    std::unique_ptr<unsigned char[]> const oldBlock(hasBlock() ? old : nullptr);  // source may lie in it
    m_buffer = nullptr;
    reset();
    try
    {
        createBuffer(kept + size);
    }
    catch (...)
    {
        clear();  // the old text may still stand in m_inlineBuffer
        throw;
    }
    moveBytes(m_buffer, old, kept);
    moveBytes(m_buffer + kept, source, size);
    m_size = kept + size;
    return *this;
}

std::ostream& operator<<(std::ostream& stream, ARNEBI18NBuffer const& buffer)
{
    return stream << buffer.getString();
}

std::ostream& operator<<(std::ostream& stream, ARNEBI18NBuffer& buffer)
{
    return stream << buffer.getString();
}
