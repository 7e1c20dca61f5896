#include "streams/ARXOJDSecureFileOutputStream.h"

#include <algorithm>

#include "ARXResource/ARXI18NRes.h"
#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/ARXAssert.h"
#include "frame/ARXNew.h"

namespace
{
std::size_t constexpr s_largestChunk = UINT32_MAX;  // the crypto interface takes sizes of 32 bits
}  // namespace

char const* const ARXOJDSecureFileOutputStream::s_xmlSessionCfgDoc =
    "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>";
char const* const ARXOJDSecureFileOutputStream::s_xmlCloseOffSetInfoDoc =
    "<setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>";

ARXOJDSecureFileOutputStream::ARXOJDSecureFileOutputStream()
    : OJDFileOutputStream(nullptr, 0), m_secureCrypto(nullptr), m_secureType(secureTypeFromConfiguration)
{
}

ARXOJDSecureFileOutputStream::~ARXOJDSecureFileOutputStream()
{
    try
    {
        if (m_secureCrypto)
            closeKRYFile();
    }
    catch (...)
    {
        // The session of a file that can't be finished must not outlive the stream; the guard closes it.
        ARXSimpleKRYHandleIPtr const unfinished(m_secureCrypto);
    }
}

void ARXOJDSecureFileOutputStream::open(char const* filename)
{
    NEB_ASSERT_NAMED(filename && *filename, "AROJDSecureFileOutputStream::open() - Required file name parameter was not specified.");
    NEB_ASSERT_NAMED(!m_secureCrypto && !m_pNonSecureStream, "AROJDSecureFileOutputStream::open() - Stream already open.");
    // Stored, so that a later open does not ask the configuration again.
    if (m_secureType == secureTypeFromConfiguration)
        m_secureType = isConfigurationEncryptionSet() ? secureTypeEncrypted : secureTypePlain;

    switch (m_secureType)
    {
    case secureTypeEncrypted:
        openEncrypted(filename);
        break;
    case secureTypePlain:
        NEB_NEW(m_pNonSecureStream, std::make_unique<OJDFileOutputStream>(filename, 0));
        break;
    default:
        NEB_ASSERT_NAMED(false, "Unkown secure stream type for AROJDSecureFileOutputStream::open()");
    }
}

void ARXOJDSecureFileOutputStream::write(char const* data, std::size_t size)
{
    if (m_secureCrypto)
        writeEncrypted(data, size);
    else if (m_pNonSecureStream)
        m_pNonSecureStream->write(data, size);
    else
        NEB_ASSERT_NAMED(false, "Uninitialized stream for AROJDSecureFileOutputStream::write()");
}

void ARXOJDSecureFileOutputStream::flush()
{
    if (m_pNonSecureStream)
        m_pNonSecureStream->flush();
}

void ARXOJDSecureFileOutputStream::close()
{
    if (m_secureCrypto)
        closeKRYFile();
    if (m_pNonSecureStream)
        m_pNonSecureStream->close();
}

void ARXOJDSecureFileOutputStream::setSecureType(secureTypeEnum type)
{
    NEB_ASSERT_NAMED(!m_secureCrypto && !m_pNonSecureStream, "AROJDSecureFileOutputStream::setSecureType() - Stream already open.");
    m_secureType = type;
}

char const* ARXOJDSecureFileOutputStream::getCipherDocInfo() const
{
    NEB_ASSERT(m_pCipherDocInfo);
    return m_pCipherDocInfo->c_str();
}

OJDFileOutputStream& ARXOJDSecureFileOutputStream::getNonSecureStream()
{
    NEB_ASSERT(m_pNonSecureStream);
    return *m_pNonSecureStream;
}

void ARXOJDSecureFileOutputStream::openEncrypted(char const* filename)
{
    NEB_ASSERT(filename && *filename);
    initKRYHandle();
    // filename may point into the previous document, which therefore lives until the new one is made.
    NEB_NEW(m_pCipherDocInfo, std::make_unique<std::string>(
                                  std::string("<setInfoDocument><action>CipherStream</action><fileOutput>") +
                                  filename + "</fileOutput></setInfoDocument>"));
    setKRYInfo(m_pCipherDocInfo->c_str());
}

// m_secureCrypto stays set after a failure: the stream then counts as open until the destructor frees it.
void ARXOJDSecureFileOutputStream::initKRYHandle()
{
    NEB_ASSERT(!m_secureCrypto);
    NEB_NEW(m_secureCrypto, ARXKRYHandleFactory::createHandle());
    m_secureCrypto->persistentInitialize(s_xmlSessionCfgDoc, nullptr);
}

void ARXOJDSecureFileOutputStream::setKRYInfo(char const* document)
{
    NEB_ASSERT(m_secureCrypto);
    m_secureCrypto->setInfo(document, nullptr);
}

// m_secureCrypto stays set after a failure, so that the caller can try again.
void ARXOJDSecureFileOutputStream::closeKRYFile()
{
    setKRYInfo(s_xmlCloseOffSetInfoDoc);
    char* outData = nullptr;
    std::size_t outSize = 0;
    std::int32_t const status = m_secureCrypto->protectData("", 0, &outData, &outSize, nullptr);
    NEB_ASSERT(KRY_SUCCEEDED( status ));  // the blanks belong to the text
    ARXKRYHandleFactory::destroyHandle(m_secureCrypto);
    m_secureCrypto = nullptr;
}

// outData stays null: for a file the crypto interface returns no data.
void ARXOJDSecureFileOutputStream::writeEncrypted(char const* data, std::size_t size)
{
    NEB_ASSERT_NAMED(m_secureCrypto, "AROJDSecureFileOutputStream::writeEncrypted() - Trying to write to uninitialized stream");
    while (data && size > 0)
    {
        std::size_t const chunk = std::min(size, s_largestChunk);
        char* outData = nullptr;
        std::size_t outSize = 0;
        std::int32_t const status = m_secureCrypto->protectData(data, chunk, &outData, &outSize, nullptr);
        NEB_ASSERT(KRY_SUCCEEDED(status));
        data += chunk;
        size -= chunk;
    }
}

bool ARXOJDSecureFileOutputStream::isConfigurationEncryptionSet()
{
    INEBConfiguration& configuration = NEBConfigurationFactory::getInstance();
    return configuration.getConfigurationValue(ARXI18NRes::getString(ARXI18NRes::s_fileEncryptionSetting),
                                               nullptr) ==
           ARXI18NRes::getString(ARXI18NRes::s_fileEncryptionOn);
}
