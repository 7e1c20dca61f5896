// Base of all output streams. Failures raise a NEBThrowable. A stream serves one thread at a time.
//
// Example:
//     #include "OJDStreamsDLL/OJDFileOutputStream.h"
//     OJDFileOutputStream file("/tmp/report.txt", 0);
//     OJDOutputStream& stream = file;
//     stream.write("text", 4);
//     stream.close();

#ifndef OJDSTREAMSDLL_OJDOUTPUTSTREAM_H
#define OJDSTREAMSDLL_OJDOUTPUTSTREAM_H

#include <cstddef>

class __attribute__((visibility("default"))) OJDOutputStream
{
public:
    // The virtual operations keep this order: it is the order of their slots.
    virtual ~OJDOutputStream();
    // Takes all size bytes, or raises.
    virtual void write(char const* data, std::size_t size) = 0;
    // Passes on what is buffered; does nothing unless overridden, like close.
    virtual void flush() {}
    virtual void close() {}
};

#endif
