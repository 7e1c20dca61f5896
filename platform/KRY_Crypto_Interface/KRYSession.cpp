#include "KRY_Crypto_Interface/KRYSession.h"

KRYSession::KRYSession(std::string_view serviceID, KRYMasterKeys const& keys)
    : m_serviceID(serviceID), m_keys(keys)
{
}

void KRYSession::setUp(char const* document)
{
    auto const [action, fileName, offset] = readSetUp(document);
    if (m_writer && action != KRYAction::finish)
        throw KRYError(KRY_ERROR_STATE, "a file is being written: only the closing document is taken");
    m_signer.reset();
    m_reader.reset();
    m_closing = action == KRYAction::finish;
    if (action == KRYAction::sign)
        m_signer = std::make_unique<KRYSigner>(m_keys.front(), m_serviceID);
    else if (action == KRYAction::cipher)
        m_writer = std::make_unique<KRYFileWriter>(fileName, m_keys, m_serviceID);
    else if (action == KRYAction::decipher)
        m_reader = std::make_unique<KRYFileReader>(fileName, offset, m_keys, m_serviceID);
}

std::optional<KRYSigner::Digest> KRYSession::protect(char const* data, std::uint32_t size)
{
    if (!data && size != 0)
        throw KRYError(KRY_ERROR_ARGUMENT, "there is a size but no data");
    if (m_signer)
        return m_signer->sign(data, size);
    if (m_closing && size == 0)
        finishFile();
    else if (m_writer && !m_closing)
        m_writer->append(data, size);
    else
        throw KRYError(KRY_ERROR_STATE, "the session is not set up to protect data");
    return {};
}

KRYFileReader& KRYSession::getReader() const
{
    if (!m_reader)
        throw KRYError(KRY_ERROR_STATE, "the session is not set up to read a file");
    return *m_reader;
}

// A writer that fails stays, so that another try fails as well instead of finding nothing to finish.
void KRYSession::finishFile()
{
    m_closing = false;
    if (m_writer)
        m_writer->finish();
    m_writer.reset();
}
