// Encodes bytes as quoted-printable text (RFC 2045, 6.7): lines of at most 76 characters that end in CRLF.
//
// Example:
//     #include "OJDStreamsDLL/OJDFileOutputStream.h"
//     OJDFileOutputStream file("/tmp/text", 0);
//     {
//         ARXOJDQuotedPrintableOutputStream filter(file, false);
//         filter.write("1 + 1 = 2\n", 10);
//     }  // sends the last line
//     file.close();
//
// A line feed ends a line, with or without a carriage return before it; a carriage return alone is data. The
// text does not depend on how the bytes are split among calls. The last line leaves only in the destructor:
// flush and close do nothing. No memory is allocated. A filter serves one thread at a time.

#ifndef ARXIUM_STREAMS_ARXOJDQUOTEDPRINTABLEOUTPUTSTREAM_H
#define ARXIUM_STREAMS_ARXOJDQUOTEDPRINTABLEOUTPUTSTREAM_H

#include <cstddef>
#include <cstdint>

#include "OJDStreamsDLL/OJDFilterOutputStream.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXOJDQuotedPrintableOutputStream : public OJDFilterOutputStream
{
public:
    // Has no target until wrap; what is written before is dropped.
    ARXOJDQuotedPrintableOutputStream();
    // target is borrowed and must outlive the filter, whose destructor writes to it. The filter calls its
    // write once for each line, and never its flush or close.
    ARXOJDQuotedPrintableOutputStream(OJDOutputStream& target, bool encodeOnlyTraillingTab);
    // Sends the last line, without CRLF. Lost are a carriage return at the very end, what the target refuses,
    // and all that is left if the target was unwrapped.
    ~ARXOJDQuotedPrintableOutputStream() override;

    ARXOJDQuotedPrintableOutputStream(ARXOJDQuotedPrintableOutputStream const&) = delete;
    ARXOJDQuotedPrintableOutputStream& operator=(ARXOJDQuotedPrintableOutputStream const&) = delete;

    // size is in bytes. What the target raises passes through. The refused line is kept, and the next write
    // or the destructor sends it first; a write that fails at that takes no byte.
    //
    // A write that fails at a line of its own has taken the bytes before the one in hand. Give that byte
    // again, unless it is a line feed: its CRLF is in the refused line.
    void write(char const* data, std::size_t size) override;
    void flush() override;

    // True: a tab is encoded only at the end of a line. False, the default: always. Applies from the next
    // byte.
    void setIsEncodeOnlyTraillingTab(bool encodeOnlyTraillingTab);

private:
    char const* inject(char const* data, char const* end);
    void flushBuffer(bool hardLineBreak, bool finalFlush);
    void breakLine();
    void convertCharacter(char byte);
    void convertTraillingCharacter(char byte);
    void injectPendingCR();
    void sendLine(std::int32_t size);

    // A full line, a trailing character that is moved after it, its line end, and room for steps of eight
    // bytes.
    char m_buffer[92];
    std::int32_t m_count;  // bytes in m_buffer
    bool m_pendingCR;      // a carriage return came, which is data unless a line feed follows
    bool m_encodeOnlyTraillingTab;
    std::int32_t m_unsentLine;  // bytes of the line that the target refused; 0 for none
};

#endif
