#include "KRY_Crypto_Interface/KRYSession.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYMemory.h"

namespace
{
void give(KRYOutput output, std::string_view bytes)
{
    if (!output.m_data || !output.m_size)
        throw KRYError(KRY_ERROR_ARGUMENT, "there is no place for what comes back");
    if (bytes.empty())
        return;
    *output.m_data = copyOut(bytes);
    *output.m_size = static_cast<std::uint32_t>(bytes.size());
}
}  // namespace

KRYSession::KRYSession(std::string_view serviceID, KRYMasterKeys const& keys)
    : m_serviceID(serviceID), m_keys(keys)
{
}

void KRYSession::setUp(char const* document)
{
    auto const [action, fileName, offset] = KRYDocument::readSetUp(document);
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

void KRYSession::protect(char const* data, std::uint32_t size, KRYOutput output)
{
    if (!data && size != 0)
        throw KRYError(KRY_ERROR_ARGUMENT, "there is a size but no data");
    if (m_closing && size == 0)
        return finishFile();
    if (m_writer && !m_closing)
        return m_writer->append(data, size);
    if (!m_signer)
        throw KRYError(KRY_ERROR_STATE, "the session is not set up to protect data");
    KRYSigner::Digest const digest = m_signer->sign(data, size);
    give(output, {reinterpret_cast<char const*>(digest.data()), digest.size()});
}

void KRYSession::unprotect(std::uint32_t wanted, KRYOutput output)
{
    KRYFileReader& reader = getReader();
    std::string_view bytes = reader.peek();
    if (wanted != 0)
        bytes = bytes.substr(0, wanted);
    give(output, bytes);
    reader.advance(bytes.size());
}

std::uint64_t KRYSession::getFileSize()
{
    return getReader().getSize();
}

KRYFileReader& KRYSession::getReader()
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
