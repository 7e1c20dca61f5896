#include "text/ARNEBI18NBuffer.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <ostream>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBDowncastSize.h"
#include "NEBCore/NEBUtCrc32.h"
#include "frame/ARXAssert.h"
#include "frame/ARXNew.h"

namespace
{
std::size_t constexpr s_unitSize = sizeof(unsigned short);

struct UnitText
{
    explicit UnitText(unsigned short unit) : m_units{unit, 0} {}

    unsigned short m_units[2];
};

using UnitBlock = unsigned short __attribute__((vector_size(16), may_alias));

bool hasZero(UnitBlock block)
{
    auto const zeros = block == 0;
    std::uint64_t halves[2];
    std::memcpy(halves, &zeros, sizeof halves);
    return (halves[0] | halves[1]) != 0;
}

// Aligned blocks halve the time of long texts. The last one may reach behind the terminator, but never into
// another page; sanitizers can't know that. A text at an odd address is never aligned and goes unit by unit.
__attribute__((no_sanitize("address", "thread"))) unsigned short const* findTerminator(
    unsigned short const* text)
{
    for (; reinterpret_cast<std::uintptr_t>(text) % sizeof(UnitBlock) != 0; ++text)
        if (*text == 0)
            return text;
    while (!hasZero(*reinterpret_cast<UnitBlock const*>(text)))
        text += sizeof(UnitBlock) / s_unitSize;
    while (*text != 0)
        ++text;
    return text;
}

std::uint64_t sizeOf(unsigned short const* text)
{
    if (!text || *text == 0)
        return 0;
    return static_cast<std::uint64_t>(findTerminator(text) - text + 1) * s_unitSize;
}

std::uint64_t sizeOf(I18NString const& text)
{
    return static_cast<std::uint64_t>(text.size());
}

// Both ends are read before either is written, so target and source may overlap.
template <typename Block>
void moveEnds(unsigned char* target, unsigned char const* source, std::uint64_t size)
{
    Block first;
    Block last;
    std::memcpy(&first, source, sizeof first);
    std::memcpy(&last, source + size - sizeof last, sizeof last);
    std::memcpy(target, &first, sizeof first);
    std::memcpy(target + size - sizeof last, &last, sizeof last);
}

struct Block16
{
    std::uint64_t m_words[2];
};

// For what fits the object. Without calls, appending a short text takes half the time.
inline void moveShort(unsigned char* target, unsigned char const* source, std::uint64_t size)
{
    if (size >= sizeof(Block16))
        moveEnds<Block16>(target, source, size);
    else if (size >= sizeof(std::uint64_t))
        moveEnds<std::uint64_t>(target, source, size);
    else if (size >= sizeof(std::uint32_t))
        moveEnds<std::uint32_t>(target, source, size);
    else if (size != 0)
        moveEnds<unsigned short>(target, source, size);
}

void moveBytes(unsigned char* target, void const* source, std::uint64_t size)
{
    if (size > 2 * sizeof(Block16))
        std::memmove(target, source, size);
    else
        moveShort(target, static_cast<unsigned char const*>(source), size);
}

// The checksum of a folded copy, piece by piece, is that of one folded byte after the other in less than half
// the time. glibc's table behind tolower halves it again; it leaves alone what isupper doesn't know.
std::uint32_t foldedCrc(unsigned char const* bytes, std::uint64_t size)
{
    std::int32_t const* const lower = *__ctype_tolower_loc();
    std::uint32_t crc = 0;
    unsigned char folded[256];
    while (size != 0)
    {
        std::uint64_t const count = std::min<std::uint64_t>(size, sizeof folded);
        std::transform(bytes, bytes + count, folded,
                       [lower](unsigned char byte) { return static_cast<unsigned char>(lower[byte]); });
        crc = NEBUtCrc32::crc32(crc, folded, count);
        bytes += count;
        size -= count;
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
    assign(other.m_buffer, other.m_size);
}

ARNEBI18NBuffer::ARNEBI18NBuffer(I18NString const& text) : ARNEBI18NBuffer()
{
    assign(text.getExternalBuffer(), sizeOf(text));
}

ARNEBI18NBuffer::ARNEBI18NBuffer(unsigned short const* text) : ARNEBI18NBuffer()
{
    assign(text, sizeOf(text));
}

ARNEBI18NBuffer::ARNEBI18NBuffer(unsigned short const& unit) : ARNEBI18NBuffer()
{
    UnitText const text(unit);
    assign(text.m_units, sizeof text.m_units);
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator=(ARNEBI18NBuffer const& other)
{
    return this == &other ? *this : assign(other.m_buffer, other.m_size);
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
    UnitText const text(unit);
    return assign(text.m_units, sizeof text.m_units);
}

ARNEBI18NBuffer& ARNEBI18NBuffer::operator+=(ARNEBI18NBuffer const& other)
{
    return append(other.m_buffer, other.m_size);
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
    UnitText const text(unit);
    return append(text.m_units, sizeof text.m_units);
}

I18NString ARNEBI18NBuffer::getString() const
{
    if (m_size == 0)
        return I18NString();
    std::int32_t const size = NEBDowncastSize::int32(m_size, __FILE__, __LINE__);
    I18NString text(size, nullptr, nullptr);
    text.setTo(m_buffer, static_cast<std::uint32_t>(size));
    return text;
}

void ARNEBI18NBuffer::getString(I18NString& text) const
{
    if (m_size == 0)
        text.erase(0, -1);
    else
        text.setTo(m_buffer, NEBDowncastSize::uint32(m_size, __FILE__, __LINE__));
}

std::uint32_t ARNEBI18NBuffer::getCrc() const
{
    if (m_crc == 0 && m_size != 0 && m_buffer)
        m_crc = NEBUtCrc32::crc32(0, m_buffer, m_size);
    return m_crc;
}

std::uint32_t ARNEBI18NBuffer::getCssCrc() const
{
    if (m_cssCrc == 0 && m_size != 0 && m_buffer)
    {
        m_cssCrc = foldedCrc(m_buffer, m_size);
    }
    return m_cssCrc;
}

bool ARNEBI18NBuffer::operator==(ARNEBI18NBuffer const& other) const
{
    return m_size == other.m_size && (m_size == 0 || std::memcmp(m_buffer, other.m_buffer, m_size) == 0);
}

bool ARNEBI18NBuffer::operator==(I18NString const& text) const
{
    return m_size == sizeOf(text) &&
           (m_size == 0 || std::memcmp(m_buffer, text.getExternalBuffer(), m_size) == 0);
}

bool ARNEBI18NBuffer::startsWith(ARNEBI18NBuffer const& other) const
{
    return comparesWith(other) && std::memcmp(m_buffer, other.m_buffer, other.getDataSize()) == 0;
}

bool ARNEBI18NBuffer::endsWith(ARNEBI18NBuffer const& other) const
{
    return comparesWith(other) &&
           std::memcmp(m_buffer + (m_size - other.m_size), other.m_buffer, other.getDataSize()) == 0;
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
        NEB_NEW(m_buffer, new unsigned char[bytes]);
}

// Whether both have code units and other isn't the longer one.
bool ARNEBI18NBuffer::comparesWith(ARNEBI18NBuffer const& other) const
{
    return m_buffer && other.m_buffer && other.m_size > s_unitSize && m_size >= other.m_size;
}

ARNEBI18NBuffer& ARNEBI18NBuffer::assign(void const* source, std::uint64_t size)
{
    // A text in our own storage always fits it, so that it is still whole when it is moved.
    if (!m_buffer || size > m_capacity)
    {
        clear();
        createBuffer(size);
    }
    moveBytes(m_buffer, source, size);
    if (size == 0 || hasBlock())
        m_inlineBuffer[0] = 0;
    reset();
    m_size = size;
    return *this;
}

ARNEBI18NBuffer& ARNEBI18NBuffer::append(void const* source, std::uint64_t size)
{
    std::uint64_t const kept = getDataSize();
    std::uint64_t const total = kept + size;
    if (size == 0 || kept == 0 || hasBlock() || total > sizeof m_inlineBuffer)
        return appendElsewhere(source, size);

    moveShort(m_buffer + kept, static_cast<unsigned char const*>(source), size);
    reset();
    m_capacity = m_size = total;
    return *this;
}

ARNEBI18NBuffer& ARNEBI18NBuffer::appendElsewhere(void const* source, std::uint64_t size)
{
    std::uint64_t const kept = getDataSize();
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
