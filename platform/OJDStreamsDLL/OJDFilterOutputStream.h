// Base of streams that change bytes on their way to another stream, their target. A filter and its target
// serve one thread at a time.
//
// Example:
//     struct Counter : OJDFilterOutputStream
//     {
//         using OJDFilterOutputStream::OJDFilterOutputStream;
//         void write(char const* data, std::size_t size) override
//         {
//             m_count += size;
//             m_target->write(data, size);
//         }
//         std::size_t m_count = 0;
//     };

#ifndef OJDSTREAMSDLL_OJDFILTEROUTPUTSTREAM_H
#define OJDSTREAMSDLL_OJDFILTEROUTPUTSTREAM_H

#include "OJDStreamsDLL/OJDOutputStream.h"

class __attribute__((visibility("default"))) OJDFilterOutputStream : public OJDOutputStream
{
public:
    OJDFilterOutputStream() = default;
    // The filter doesn't own target, which must live until the filter is destroyed or unwrapped.
    explicit OJDFilterOutputStream(OJDOutputStream& target) : m_target(&target) {}
    ~OJDFilterOutputStream() override;

    OJDFilterOutputStream(OJDFilterOutputStream const&) = delete;
    OJDFilterOutputStream& operator=(OJDFilterOutputStream const&) = delete;

    // Replaces the target, without any call on the former one.
    virtual void wrap(OJDOutputStream& target) { m_target = &target; }
    virtual void unWrap() { m_target = nullptr; }

protected:
    OJDOutputStream* m_target = nullptr;  // null while nothing is wrapped
};

#endif
