// Lets the DOM library's writer send a document to any output stream, unchanged and unbuffered.
//
// One adapter serves one thread at a time, as its target does.

#ifndef ARXIUM_STREAMS_ARXDOMWRITEROJDOUTPUTSTREAM_H
#define ARXIUM_STREAMS_ARXDOMWRITEROJDOUTPUTSTREAM_H

#include "NEBIDOM/DomWriter.h"
#include "frame/ArxiumExport.h"

class OJDOutputStream;

class ARXIUM_API ARXDomWriterOJDOutputStream : public DomWriter
{
public:
    // stream is borrowed and must outlive the adapter.
    explicit ARXDomWriterOJDOutputStream(OJDOutputStream& stream);
    // Flushes the target, which stays open; a failure of that is lost.
    ~ARXDomWriterOJDOutputStream() override;

    ARXDomWriterOJDOutputStream(ARXDomWriterOJDOutputStream const&) = delete;
    ARXDomWriterOJDOutputStream& operator=(ARXDomWriterOJDOutputStream const&) = delete;

    // What the target raises passes through both. A size of 0 reaches the target too.
    void write(char const* data, int size) override;
    // A single line feed on every platform.
    void endline() override;

private:
    OJDOutputStream* m_pStream;
};

#endif
