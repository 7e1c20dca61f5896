// Base of streams that change bytes on their way to another stream, their target.

#ifndef OJDSTREAMSDLL_OJDFILTEROUTPUTSTREAM_H
#define OJDSTREAMSDLL_OJDFILTEROUTPUTSTREAM_H

#include "OJDStreamsDLL/OJDOutputStream.h"

class __attribute__((visibility("default"))) OJDFilterOutputStream : public OJDOutputStream
{
public:
    OJDFilterOutputStream();
    // target is borrowed and must outlive the filter, or be unwrapped before it ends.
    explicit OJDFilterOutputStream(OJDOutputStream& target);
    ~OJDFilterOutputStream() override;

    OJDFilterOutputStream(OJDFilterOutputStream const&) = delete;
    OJDFilterOutputStream& operator=(OJDFilterOutputStream const&) = delete;

    // Takes target in place of the one before, which is told nothing.
    virtual void wrap(OJDOutputStream& target);
    virtual void unWrap();

protected:
    OJDOutputStream* m_target;  // null while nothing is wrapped
};

#endif
