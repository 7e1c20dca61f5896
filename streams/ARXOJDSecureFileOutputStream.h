// Writes a file that is plain, or encrypted by the crypto interface.
//
// Example:
//     ARXOJDSecureFileOutputStream file;  // after Arxium::initialize
//     file.setSecureType(ARXOJDSecureFileOutputStream::secureTypeEncrypted);
//     file.open("/tmp/report.sealed");
//     file.write("secret", 6);
//     file.close();  // reports what fails, as the destructor can't
//
// Each stream has a mode, set by setSecureType or else by the setting fileEncryption. The crypto interface
// makes the encrypted file, in a session of the stream's own (NIST SP 800-38D), and gives it its name in
// close.
//
// Warning: the destructor finishes a file that is open, also while an exception unwinds the stack. A short
// file then takes the name and opens without an error. docs/output-streams.md shows how a host discards it.
//
// Assertions raise NEBAssertError and change nothing; their texts spell the class "AROJD...", which hosts
// know. A stream serves one thread at a time.

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
        secureTypeFromConfiguration = 2  // the first open replaces it by one of the others
    };

    // The mode is secureTypeFromConfiguration.
    ARXOJDSecureFileOutputStream();
    // Finishes an open file as close does. What fails is not reported.
    ~ARXOJDSecureFileOutputStream() override;

    // filename is bytes without conversion, not empty. It goes unescaped into a document of the crypto
    // interface, so users must not choose it freely. An encrypted stream can be opened again after close, a
    // plain one can't. Raises NEBException if a plain file can't be made, and ARXException if the crypto
    // interface refuses; the stream then counts as open and can only be destroyed.
    void open(char const* filename);

    // size is in bytes. Raises NEBAssertError if no file is open or the crypto interface fails, and
    // NEBException if a plain file does. What was written before stays written.
    void write(char const* data, std::size_t size) override;
    // Affects plain files only.
    void flush() override;
    // Finishes the file. If that fails, raises, and the stream stays open; an encrypted file that couldn't be
    // written fails at each further try. Does nothing on a closed stream.
    void close() override;

    // Allowed before open, and after close of an encrypted stream.
    void setSecureType(secureTypeEnum type);
    secureTypeEnum getSecureType() const { return m_secureType; }
    // The setInfoDocument of an encrypted stream, also after close; valid until the next open or destruction.
    // Raises NEBAssertError if there is none.
    char const* getCipherDocInfo() const;

protected:
    // Raises NEBAssertError unless the stream is plain and was opened.
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
