// Signs data in memory by HMAC-SHA-256 (RFC 2104) under a key of the service's own. Any number of threads may
// sign at once. docs/formats.md shows how to check a signature without this library.

#ifndef KRY_CRYPTO_INTERFACE_KRYSIGNER_H
#define KRY_CRYPTO_INTERFACE_KRYSIGNER_H

#include <array>
#include <cstdint>
#include <string>

#include <openssl/sha.h>

#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYSigner
{
public:
    using Digest = std::array<unsigned char, SHA256_DIGEST_LENGTH>;

    KRYSigner(KRYSecret const& masterKey, std::string const& serviceID);
    ~KRYSigner();

    KRYSigner(KRYSigner const&) = delete;
    KRYSigner& operator=(KRYSigner const&) = delete;

    // data may be null when size is 0.
    Digest sign(char const* data, std::uint32_t size) const;

private:
    // The states of HMAC's two hashes after the key's block, which signing only reads. An EVP_MAC_CTX is
    // written by each signature: threads that share a session then fight for its memory, and a signature
    // takes twice as long.
    SHA256_CTX m_inner;
    SHA256_CTX m_outer;
};

#endif
