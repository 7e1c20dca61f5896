// A file sink whose file is plain, or encrypted by the crypto interface.
//
// The mode is chosen per stream, by setSecureType or else by one configuration setting. An encrypted file is
// created and written by the crypto interface, through a session of the stream's own, between open and close;
// Arxium::initialize comes before. Assertions raise NEBAssertError and leave the stream as it was; their
// texts spell the class "AROJD...", which hosts know. One stream serves one thread at a time.

#ifndef ARXIUM_STREAMS_ARXOJDSECUREFILEOUTPUTSTREAM_H
#define ARXIUM_STREAMS_ARXOJDSECUREFILEOUTPUTSTREAM_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "OJDStreamsDLL/OJDFileOutputStream.h"
#include "frame/ArxiumExport.h"

class ARXKRYHandleI;

class ARXIUM_API ARXOJDSecureFileOutputStream : public OJDFileOutputStream
{
public:
    enum secureTypeEnum : std::int32_t
    {
        secureTypePlain = 0,
        secureTypeEncrypted = 1,
        secureTypeFromConfiguration = 2  // open replaces it by one of the others, for good
    };

    // With secureTypeFromConfiguration.
    ARXOJDSecureFileOutputStream();
    // Finishes the file as close does; what fails is lost here.
    ~ARXOJDSecureFileOutputStream() override;

    // filename (bytes, no conversion) must not be empty. It goes into a document of the crypto interface as
    // it is, not escaped, and may lie in getCipherDocInfo's text. An encrypted stream may be opened again
    // after close, a plain one may not. If the crypto interface refuses, ARXException is raised and the
    // stream counts as open, good only for destruction; a file that can't be made raises NEBException.
    void open(char const* filename);

    // Raises if no file is open, and on failure, when the part of data before it has been written.
    void write(char const* data, std::size_t size) override;
    // Has an effect on a plain file alone.
    void flush() override;
    // Where the file can't be finished this raises and the stream stays open; a second try is allowed. A
    // second call after success does nothing.
    void close() override;

    // Only before open, or after close of an encrypted stream.
    void setSecureType(secureTypeEnum type);
    secureTypeEnum getSecureType() const { return m_secureType; }
    // The setInfoDocument of an encrypted stream, also after close; valid until the next open. Raises if
    // there was none.
    char const* getCipherDocInfo() const;

protected:
    // Raises for a stream that is not plain.
    OJDFileOutputStream& getNonSecureStream();

private:
    void openEncrypted(char const* filename);
    void initKRYHandle();
    void setKRYInfo(char const* document);
    void closeKRYFile();
    void writeEncrypted(char const* data, std::size_t size);
    bool isConfigurationEncryptionSet();

    static char const* const s_xmlSessionCfgDoc;
    static char const* const s_xmlCloseOffSetInfoDoc;

    ARXKRYHandleI* m_secureCrypto;  // owned, from ARXKRYHandleFactory; null unless an encrypted file is open
    secureTypeEnum m_secureType;
    std::unique_ptr<std::string> m_pCipherDocInfo;
    std::unique_ptr<OJDFileOutputStream> m_pNonSecureStream;  // kept by close
};

#endif
