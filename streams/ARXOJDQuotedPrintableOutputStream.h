// Encodes bytes as quoted-printable text (RFC 2045, 6.7): lines of at most 76 characters that end in CRLF.
//
// A line feed and a carriage return with a line feed end a line; a carriage return alone is data. The text
// depends on the bytes alone, not on how they are split among calls. The last line leaves only when the
// filter is destroyed: flush and close do nothing. No memory is allocated. One filter serves one thread at
// a time.

#ifndef ARXIUM_STREAMS_ARXOJDQUOTEDPRINTABLEOUTPUTSTREAM_H
#define ARXIUM_STREAMS_ARXOJDQUOTEDPRINTABLEOUTPUTSTREAM_H

#include <cstddef>
#include <cstdint>

#include "OJDStreamsDLL/OJDFilterOutputStream.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXOJDQuotedPrintableOutputStream : public OJDFilterOutputStream
{
public:
    // Without a target, which wrap gives it; what is written before that is dropped.
    ARXOJDQuotedPrintableOutputStream();
    // target is borrowed and must outlive the filter, whose destructor still writes. It gets one write a line
    // and no flush or close.
    ARXOJDQuotedPrintableOutputStream(OJDOutputStream& target, bool encodeOnlyTraillingTab);
    // Sends the unfinished last line, without CRLF. A carriage return at the very end is lost, and so is what
    // the target refuses, or all that is left if it was unwrapped.
    ~ARXOJDQuotedPrintableOutputStream() override;

    ARXOJDQuotedPrintableOutputStream(ARXOJDQuotedPrintableOutputStream const&) = delete;
    ARXOJDQuotedPrintableOutputStream& operator=(ARXOJDQuotedPrintableOutputStream const&) = delete;

    // What the target raises passes through, and data behind that line is not taken. The line is kept and
    // sent again, before anything else, by the next write or by the destructor.
    void write(char const* data, std::size_t size) override;
    void flush() override;

    // True leaves a tab as it is unless it ends a line; false, as at first, encodes every tab. Holds from the
    // next byte on.
    void setIsEncodeOnlyTraillingTab(bool encodeOnlyTraillingTab);

private:
    char const* inject(char const* data, char const* end);
    void flushBuffer(bool hardLineBreak, bool finalFlush);
    void breakLine();
    void convertCharacter(char byte);
    void convertTraillingCharacter(char byte);
    void injectPendingCR();
    void sendLine(std::int32_t size);

    // A full line, a trailing character moved behind it, its own line end, and room to store more bytes at
    // once than are kept.
    char m_buffer[92];
    std::int32_t m_count;  // bytes in m_buffer
    bool m_pendingCR;      // a carriage return was seen that is data unless a line feed follows
    bool m_encodeOnlyTraillingTab;
    std::int32_t m_unsentLine;  // bytes of a finished line in m_buffer that the target refused, else 0
};

#endif
