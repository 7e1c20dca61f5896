// Lets the DOM library's writer send a document to any output stream, unchanged and unbuffered.
//
// Example:
//     #include "OJDStreamsDLL/OJDFileOutputStream.h"
//     OJDFileOutputStream file("/tmp/document.xml", 0);
//     {
//         ARXDomWriterOJDOutputStream writer(file);
//         writer.write("<r/>", 4);
//         writer.endline();
//     }  // flushes the file
//     file.close();
//
// The encoding is DomWriter's: getOutputEncoding. An adapter serves one thread at a time, as its target does.

#ifndef ARXIUM_STREAMS_ARXDOMWRITEROJDOUTPUTSTREAM_H
#define ARXIUM_STREAMS_ARXDOMWRITEROJDOUTPUTSTREAM_H

#include "NEBIDOM/DomWriter.h"
#include "frame/ArxiumExport.h"

class OJDOutputStream;

class ARXIUM_API ARXDomWriterOJDOutputStream : public DomWriter
{
public:
    // stream is borrowed and must outlive the adapter, whose destructor flushes it.
    explicit ARXDomWriterOJDOutputStream(OJDOutputStream& stream);
    // Flushes the target, which stays open. A failure is not reported.
    ~ARXDomWriterOJDOutputStream() override;

    ARXDomWriterOJDOutputStream(ARXDomWriterOJDOutputStream const&) = delete;
    ARXDomWriterOJDOutputStream& operator=(ARXDomWriterOJDOutputStream const&) = delete;

    // size is in bytes and not negative; 0 reaches the target too. What the target raises passes through.
    void write(char const* data, int size) override;
    // Writes a line feed, on every platform. What the target raises passes through.
    void endline() override;

private:
    OJDOutputStream* m_pStream;
};

#endif
