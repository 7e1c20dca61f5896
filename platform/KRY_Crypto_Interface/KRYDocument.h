// Reads the documents that drive the interface.
//
// They are taken strictly, byte for byte: the XML declaration may be left out, else it stands exactly as
// `<?xml version="1.0" encoding="UTF-8" standalone="yes"?>`; then come the root and its elements with nothing
// between them, each at most once and never empty. There are no attributes and nothing is decoded. Whatever
// else raises KRYError with KRY_ERROR_DOCUMENT, in words that repeat nothing of the document.
//
// The name of a file may hold any bytes. It reaches from the first `<fileOutput>` to the last `</fileOutput>`
// (or fileInput), which must be followed by the end of the root and of the document.

#ifndef KRY_CRYPTO_INTERFACE_KRYDOCUMENT_H
#define KRY_CRYPTO_INTERFACE_KRYDOCUMENT_H

#include <string_view>

enum class KRYAction
{
    sign,      // action CSKHMAC, dataLocation memory
    cipher,    // action CipherStream, fileOutput
    decipher,  // action DecipherStream, fileInput
    finish,    // dataLocation file: the closing document
};

struct KRYSetUp
{
    KRYAction m_action;
    std::string_view m_fileName;  // a part of the document; empty where there is no file
};

class KRYDocument
{
public:
    // text may be null, which is refused. Both allocate nothing unless they raise, and answer with parts of
    // text.
    static std::string_view readServiceID(char const* text, std::string_view root);
    static KRYSetUp readSetUp(char const* text);
};

#endif
