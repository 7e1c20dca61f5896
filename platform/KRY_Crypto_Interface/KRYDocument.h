// Recognises the documents that drive the interface. KRY_Crypto_Interface.h lists them.
//
// They are compared byte for byte. Anything else raises KRYError with KRY_ERROR_DOCUMENT, in words that
// repeat nothing of the document. The name of a file may hold any bytes: it reaches from the document's fixed
// beginning to its fixed end.

#ifndef KRY_CRYPTO_INTERFACE_KRYDOCUMENT_H
#define KRY_CRYPTO_INTERFACE_KRYDOCUMENT_H

#include <cstdint>
#include <string_view>

enum class KRYAction
{
    sign,
    cipher,
    decipher,
    finish,  // by the closing document
};

struct KRYSetUp
{
    KRYAction m_action;
    std::string_view m_fileName;  // a part of the document; empty where there is no file
    std::uint64_t m_offset;       // where reading begins
};

// text may be null, which is refused. Both allocate nothing unless they raise, and return parts of text.
std::string_view readServiceID(char const* text, std::string_view root);
KRYSetUp readSetUp(char const* text);

#endif
