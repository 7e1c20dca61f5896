// Base of all input streams. It holds no data; each stream says which threads may call.
//
// Operations that read return the number of bytes, or s_end, the std::size_t with every bit set, if the
// stream has ended and there are none.
//
// Example:
//     #include "zip/ARXZipInputStream.h"
//     ARXZipInputStream zip("/tmp/backup.zip");
//     OJDInputStream& stream = zip;
//     char bytes[4096];
//     if (zip.locate("a/b") && zip.openCurrentEntry())
//         while (stream.read(bytes, sizeof bytes) != OJDInputStream::s_end)
//             continue;  // use the bytes

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
    // Reads up to n bytes. This base reads byte by byte until it has n.
    virtual std::size_t read(char* buf, std::size_t n);
    // The same, appended to buf.
    virtual std::size_t read(NEBByteBuffer& buf, std::size_t n) = 0;
    // Repeats read until it has n bytes; fewer only at the end.
    virtual std::size_t readFully(char* buf, std::size_t n);
    virtual std::size_t readFully(NEBByteBuffer& buf, std::size_t n);
    virtual void close() {}
    // Returns the number of bytes that can be read without waiting, or 0 if it is unknown.
    virtual std::size_t available() { return 0; }
    // Returns to the first byte. A stream that can't throws the text "not implemented" (a char const*), which
    // is not a NEBThrowable.
    virtual void reset() { throw "not implemented"; }

    // Bounds and interrupts waiting, in streams that wait. Times are in milliseconds. This base returns 0
    // everywhere: it can't, it refuses, nothing is set; cancel has no effect.
    virtual int canTimeout() const { return 0; }
    virtual int setTimeout(int) { return 0; }
    virtual int getTimeout() const { return 0; }
    virtual int canCancel() const { return 0; }
    virtual int setCancel(int) { return 0; }
    virtual int getCancel() const { return 0; }
    virtual void cancel() {}
};

#endif
