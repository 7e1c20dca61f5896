// A session: a service id and what the last set-up document made of it. For one thread at a time.
//
// | last set-up          | protect                                     | unprotect            |
// |----------------------|---------------------------------------------|----------------------|
// | none                 | fails                                       | fails                |
// | CSKHMAC              | signs                                       | fails                |
// | CipherStream         | appends to the file                         | fails                |
// | DecipherStream       | fails                                       | reads on in the file |
// | the closing document | with data: fails                            | fails                |
// |                      | without: ends the file if there is one, and |                      |
// |                      | in any case the set-up, also if that fails  |                      |
//
// While a file is being written no other set-up than the closing document is accepted. Otherwise a new set-up
// ends the one before, also where it fails. A document that is refused changes nothing.

#ifndef KRY_CRYPTO_INTERFACE_KRYSESSION_H
#define KRY_CRYPTO_INTERFACE_KRYSESSION_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYDocument.h"
#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYFileReader.h"
#include "KRY_Crypto_Interface/KRYFileWriter.h"
#include "KRY_Crypto_Interface/KRYSigner.h"

class KRYSession
{
public:
    // The keys must outlive the session.
    KRYSession(std::string_view serviceID, KRYMasterKeys const& keys);

    void setUp(char const* document);
    std::string const& getServiceID() const { return m_serviceID; }

    // Returns a signature if the session signs.
    std::optional<KRYSigner::Digest> protect(char const* data, std::uint32_t size);
    // Of the file that unprotect reads. Raises if the session reads none.
    KRYFileReader& getReader() const;

    // Why the last call that failed did so; null if none has or there was no memory to keep it.
    KRYText& getLastFailure() { return m_lastFailure; }

private:
    void finishFile();

    std::string const m_serviceID;
    KRYMasterKeys const& m_keys;
    KRYText m_lastFailure;

    // At most one of the three is there.
    std::unique_ptr<KRYSigner> m_signer;
    std::unique_ptr<KRYFileWriter> m_writer;
    std::unique_ptr<KRYFileReader> m_reader;
    bool m_closing = false;  // the closing document has come
};

#endif
