#include "streams/ARXOJDQuotedPrintableOutputStream.h"

#include <endian.h>

#include <array>
#include <cstring>

namespace
{
std::int32_t constexpr s_lineLimit = 76;
std::int32_t constexpr s_encodedSize = 3;
char constexpr s_softLineBreak[] = {'=', '\r', '\n'};
char constexpr s_lineEnd[] = {'\r', '\n'};

std::uint8_t constexpr s_lineEndSize = 0;

// The encoded form of a byte.
struct Form
{
    char m_text[s_encodedSize];
    std::uint8_t m_size;  // s_lineEndSize for carriage return and line feed, which end lines
};
using Forms = std::array<Form, 256>;

constexpr Form encodedForm(unsigned char byte)
{
    char const* const digits = "0123456789ABCDEF";
    return {{'=', digits[byte >> 4], digits[byte & 15]}, s_encodedSize};
}

constexpr Forms makeForms(bool tabIsLiteral)
{
    Forms forms{};
    for (unsigned byte = 0; byte < forms.size(); ++byte)
    {
        bool const isLiteral =
            (byte >= 0x20 && byte <= 0x7E && byte != '=') || (byte == '\t' && tabIsLiteral);
        forms[byte] =
            isLiteral ? Form{{static_cast<char>(byte)}, 1} : encodedForm(static_cast<unsigned char>(byte));
    }
    forms['\r'].m_size = forms['\n'].m_size = s_lineEndSize;
    return forms;
}

Forms constexpr s_formsTabEncoded = makeForms(false);
Forms constexpr s_formsTabLiteral = makeForms(true);

std::ptrdiff_t constexpr s_stepSize = 8;

// Copies eight bytes. Returns the high bit of the place of the first that is not literal in every setting, or
// 0 for none; carries spoil the bits above it. ASCII text takes 2.5 times as long byte by byte.
std::uint64_t copyLiterals(char* target, char const* data)
{
    std::uint64_t constexpr ones = 0x0101010101010101;
    std::uint64_t bytes;
    std::memcpy(&bytes, data, s_stepSize);
    std::memcpy(target, &bytes, s_stepSize);
    bytes = le64toh(bytes);
    std::uint64_t const belowBlank = bytes - 0x20 * ones;
    std::uint64_t const equalSign = (bytes ^ ('=' * ones)) - ones;
    std::uint64_t const aboveTilde = bytes | (bytes + ones);
    return (belowBlank | equalSign | aboveTilde) & (0x80 * ones);
}

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t';
}
}  // namespace

ARXOJDQuotedPrintableOutputStream::ARXOJDQuotedPrintableOutputStream()
    : m_count(0), m_pendingCR(false), m_encodeOnlyTraillingTab(false), m_unsentLine(0)
{
}

ARXOJDQuotedPrintableOutputStream::ARXOJDQuotedPrintableOutputStream(OJDOutputStream& target,
                                                                     bool encodeOnlyTraillingTab)
    : OJDFilterOutputStream(target),
      m_count(0),
      m_pendingCR(false),
      m_encodeOnlyTraillingTab(encodeOnlyTraillingTab),
      m_unsentLine(0)
{
}

ARXOJDQuotedPrintableOutputStream::~ARXOJDQuotedPrintableOutputStream()
{
    if (!m_target)
        return;
    try
    {
        if (m_unsentLine != 0)
            sendLine(m_unsentLine);
        if (m_count != 0)
            flushBuffer(false, true);
    }
    catch (...)
    {
        return;
    }
}

void ARXOJDQuotedPrintableOutputStream::write(char const* data, std::size_t size)
{
    if (!m_target || !data || size == 0)
        return;
    if (m_unsentLine != 0)
        sendLine(m_unsentLine);

    char const* const end = data + size;
    while (data != end)
    {
        if (m_pendingCR && *data != '\n')
            injectPendingCR();
        data = inject(data, end);
        if (data == end)
            return;
        if (*data == '\r')
        {
            m_pendingCR = true;
            ++data;
        }
        else if (*data == '\n')
        {
            m_pendingCR = false;
            ++data;
            flushBuffer(true, false);
        }
        else
            flushBuffer(false, false);
    }
}

void ARXOJDQuotedPrintableOutputStream::flush() {}

void ARXOJDQuotedPrintableOutputStream::setIsEncodeOnlyTraillingTab(bool encodeOnlyTraillingTab)
{
    m_encodeOnlyTraillingTab = encodeOnlyTraillingTab;
}

// Takes bytes up to a line end, or to the first that finds no room in the line. Returns where it stopped.
char const* ARXOJDQuotedPrintableOutputStream::inject(char const* data, char const* end)
{
    Forms const& forms = m_encodeOnlyTraillingTab ? s_formsTabLiteral : s_formsTabEncoded;
    std::ptrdiff_t count = m_count;
    while (count + s_stepSize <= s_lineLimit && end - data >= s_stepSize)
    {
        std::uint64_t const marks = copyLiterals(m_buffer + count, data);
        std::ptrdiff_t const copied = marks == 0 ? s_stepSize : __builtin_ctzll(marks) / 8;
        count += copied;
        data += copied;
        if (marks != 0)
            break;
    }
    // Always four bytes, of which m_size count: a branch on literal or encoded would take most of the time.
    for (; data != end; ++data)
    {
        Form const& form = forms[static_cast<unsigned char>(*data)];
        std::ptrdiff_t const next = count + form.m_size;
        if (form.m_size == s_lineEndSize || next > s_lineLimit)
            break;
        std::memcpy(m_buffer + count, &form, sizeof form);
        count = next;
    }
    m_count = static_cast<std::int32_t>(count);
    return data;
}

void ARXOJDQuotedPrintableOutputStream::flushBuffer(bool hardLineBreak, bool finalFlush)
{
    if (!hardLineBreak && !finalFlush)
    {
        breakLine();
        return;
    }
    if (m_count != 0 && isBlank(m_buffer[m_count - 1]))
        convertTraillingCharacter(m_buffer[m_count - 1]);
    if (hardLineBreak)
    {
        std::memcpy(m_buffer + m_count, s_lineEnd, sizeof s_lineEnd);
        m_count += static_cast<std::int32_t>(sizeof s_lineEnd);
    }
    sendLine(m_count);
}

// In a full line the "=" takes the last place, so the last byte, in its whole form, moves to the next line.
void ARXOJDQuotedPrintableOutputStream::breakLine()
{
    std::int32_t size = m_count;
    if (size == s_lineLimit)
        size -= m_buffer[s_lineLimit - s_encodedSize] == '=' ? s_encodedSize : 1;
    char moved[s_encodedSize];
    std::memcpy(moved, m_buffer + size, sizeof moved);
    std::memcpy(m_buffer + size + sizeof s_softLineBreak, moved, sizeof moved);
    std::memcpy(m_buffer + size, s_softLineBreak, sizeof s_softLineBreak);
    size += static_cast<std::int32_t>(sizeof s_softLineBreak);
    m_count += static_cast<std::int32_t>(sizeof s_softLineBreak);
    sendLine(size);
}

void ARXOJDQuotedPrintableOutputStream::convertCharacter(char byte)
{
    Form const form = encodedForm(static_cast<unsigned char>(byte));
    std::memcpy(m_buffer + m_count, form.m_text, s_encodedSize);
    m_count += s_encodedSize;
}

// In place of the last byte, or on a line of its own if the line has no room.
void ARXOJDQuotedPrintableOutputStream::convertTraillingCharacter(char byte)
{
    --m_count;
    if (m_count + s_encodedSize > s_lineLimit)
    {
        std::memcpy(m_buffer + m_count, s_softLineBreak, sizeof s_softLineBreak);
        m_count += static_cast<std::int32_t>(sizeof s_softLineBreak);
    }
    convertCharacter(byte);
}

// No line feed followed, so the carriage return is data.
void ARXOJDQuotedPrintableOutputStream::injectPendingCR()
{
    if (m_count + s_encodedSize > s_lineLimit)
        breakLine();
    convertCharacter('\r');
    m_pendingCR = false;
}

// Sends the first size bytes. What follows them, at most one encoded byte, begins the next line.
void ARXOJDQuotedPrintableOutputStream::sendLine(std::int32_t size)
{
    m_unsentLine = size;  // stays if the target raises
    m_target->write(m_buffer, static_cast<std::size_t>(size));
    m_unsentLine = 0;
    m_count -= size;
    if (m_count != 0)
        std::memcpy(m_buffer, m_buffer + size, s_encodedSize);
}
