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
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYDocument.h"
#include "KRY_Crypto_Interface/KRYFileReader.h"
#include "KRY_Crypto_Interface/KRYFileWriter.h"
#include "KRY_Crypto_Interface/KRYLastFailure.h"
#include "KRY_Crypto_Interface/KRYSigner.h"

// Where a call puts what comes back. Both stand at 0 before the call, and either is null if nothing is
// wanted.
struct KRYOutput
{
    char** m_data;
    std::uint32_t* m_size;
};

class KRYSession
{
public:
    // The keys must outlive the session.
    KRYSession(std::string_view serviceID, KRYMasterKeys const& keys);

    void setUp(char const* document);
    std::string const& getServiceID() const { return m_serviceID; }

    void protect(char const* data, std::uint32_t size, KRYOutput output);
    // Reads wanted bytes at most, and at most a segment; 0 means a segment.
    void unprotect(std::uint32_t wanted, KRYOutput output);

    // The size of the plain data of the file that is read.
    std::uint64_t getFileSize();

    KRYLastFailure& getLastFailure() { return m_lastFailure; }

private:
    KRYFileReader& getReader();
    void finishFile();

    std::string const m_serviceID;
    KRYMasterKeys const& m_keys;
    KRYLastFailure m_lastFailure;

    // At most one of the three is there.
    std::unique_ptr<KRYSigner> m_signer;
    std::unique_ptr<KRYFileWriter> m_writer;
    std::unique_ptr<KRYFileReader> m_reader;
    bool m_closing = false;  // the closing document has come
};

#endif
