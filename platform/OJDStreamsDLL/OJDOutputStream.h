// Base of all output streams. A stream serves one thread at a time; operations raise NEBThrowable.

#ifndef OJDSTREAMSDLL_OJDOUTPUTSTREAM_H
#define OJDSTREAMSDLL_OJDOUTPUTSTREAM_H

#include <cstddef>

class __attribute__((visibility("default"))) OJDOutputStream
{
public:
    // The virtual operations keep this order: it is the order of their slots.
    virtual ~OJDOutputStream();
    // Takes size bytes, all or by exception.
    virtual void write(char const* data, std::size_t size) = 0;
    // Passes on what is held back.
    virtual void flush();
    virtual void close();
};

#endif
