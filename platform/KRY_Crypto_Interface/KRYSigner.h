// Signs data in memory by HMAC-SHA-256 (RFC 2104) under a key of the service's own. For one thread at a time.
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
#include <memory>
#include <string>

#include <openssl/evp.h>

#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYSigner
{
public:
    using Digest = std::array<unsigned char, 32>;

    KRYSigner(KRYSecret const& masterKey, std::string const& serviceID);

    // data may be null when size is 0.
    Digest sign(char const* data, std::uint32_t size);

private:
    // Keyed once and kept: setting it back costs a sixth of keying it anew.
    std::unique_ptr<EVP_MAC_CTX, decltype(&EVP_MAC_CTX_free)> m_context;
};

#endif
