// Keys of 32 bytes, which are wiped before their memory is given up.

#ifndef KRY_CRYPTO_INTERFACE_KRYSECRET_H
#define KRY_CRYPTO_INTERFACE_KRYSECRET_H

#include <array>
#include <cstddef>
#include <vector>

#include <openssl/crypto.h>

#include "KRY_Crypto_Interface/KRYLockedMemory.h"

class KRYSecret
{
public:
    static constexpr std::size_t s_size = 32;

    KRYSecret() = default;
    ~KRYSecret() { OPENSSL_cleanse(m_bytes.data(), s_size); }

    KRYSecret(KRYSecret const&) = delete;
    KRYSecret& operator=(KRYSecret const&) = delete;

    unsigned char* data() { return m_bytes.data(); }
    unsigned char const* data() const { return m_bytes.data(); }

private:
    std::array<unsigned char, s_size> m_bytes{};
};

// The master keys, in the order of the key file. The first signs and seals; each opens what it sealed.
using KRYMasterKeys = std::vector<KRYSecret, KRYLockedMemory<KRYSecret>>;

#endif
