// Base of all input streams. It holds no data and promises nothing about threads: that is each stream's own.
//
// A count of s_end, the std::size_t value with every bit set, means that the stream gave nothing because it
// had ended.

#ifndef OJDSTREAMSDLL_OJDINPUTSTREAM_H
#define OJDSTREAMSDLL_OJDINPUTSTREAM_H

#include <cstddef>

class NEBByteBuffer;

class __attribute__((visibility("default"))) OJDInputStream
{
public:
    static std::size_t constexpr s_end = static_cast<std::size_t>(-1);

    // The virtual operations keep this order: it is the order of their slots.
    virtual ~OJDInputStream();
    // The next byte, 0 to 255, or s_end.
    virtual std::size_t read() = 0;
    // Reads up to n bytes and answers how many, s_end if there were none. This one reads byte by byte until
    // n are there.
    virtual std::size_t read(char* buf, std::size_t n);
    // The same, appended to buf.
    virtual std::size_t read(NEBByteBuffer& buf, std::size_t n) = 0;
    // Repeats read until n bytes are there. A smaller count comes at the end alone, s_end if there were none.
    virtual std::size_t readFully(char* buf, std::size_t n);
    virtual std::size_t readFully(NEBByteBuffer& buf, std::size_t n);
    virtual void close() {}
    // Bytes that can be read without waiting; 0 where the stream can't tell.
    virtual std::size_t available() { return 0; }
    // Goes back to the stream's first byte. A stream that can't throws the plain text "not implemented",
    // which is no NEBThrowable.
    virtual void reset() { throw "not implemented"; }

    // Waiting is bounded and interrupted only by streams that say so here: 0 means that the stream can't,
    // that the request was refused, and that no time (milliseconds) and no flag is set. cancel then has no
    // effect.
    virtual int canTimeout() const;
    virtual int setTimeout(int timeout);
    virtual int getTimeout() const;
    virtual int canCancel() const;
    virtual int setCancel(int enabled);
    virtual int getCancel() const;
    virtual void cancel();
};

#endif
