// Signs data in memory by HMAC-SHA-256 (RFC 2104) under a key of the service's own. Any number of threads may
// sign at once.
//
// The key is HKDF of the master key with the salt "KRY-CSKHMAC-1" and the service id as info, so whoever has
// the key file can check a digest without this library:
//
//     master=$(xxd -p -c 32 master.key)
//     options="-kdfopt digest:SHA2-256 -kdfopt salt:KRY-CSKHMAC-1 -kdfopt info:TALM"
//     key=$(openssl kdf -keylen 32 -kdfopt hexkey:$master $options HKDF | tr -d :)
//     printf %s report.pdf | openssl dgst -sha256 -mac HMAC -macopt hexkey:$key

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
    // written by each signature, and its cache lines wander between the threads that share a session: a
    // signature took twice as long, and two threads together signed fewer URLs than one.
    SHA256_CTX m_inner;
    SHA256_CTX m_outer;
};

#endif
