// Receives the text of a document from the DOM library. A writer serves one thread at a time.
//
// Example:
//     #include <string>
//     struct TextWriter : DomWriter
//     {
//         void write(char const* data, int size) override { m_text += std::string(data, data + size); }
//         void endline() override { m_text += '\n'; }
//         std::string m_text;
//     };

#ifndef NEBIDOM_DOMWRITER_H
#define NEBIDOM_DOMWRITER_H

class __attribute__((visibility("default"))) DomWriter
{
public:
    DomWriter() = default;

    // The virtual operations keep this order: it is the order of their slots.
    virtual ~DomWriter();
    // size in bytes, never negative.
    virtual void write(char const* data, int size) = 0;
    virtual void endline() = 0;
    // The encoding of the text that write takes: "UTF-8" unless overridden.
    virtual char const* getOutputEncoding() { return "UTF-8"; }
};

#endif
