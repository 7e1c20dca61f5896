// 32 bytes of key that leave nothing behind in memory.

#ifndef KRY_CRYPTO_INTERFACE_KRYSECRET_H
#define KRY_CRYPTO_INTERFACE_KRYSECRET_H

#include <array>
#include <cstddef>

#include <openssl/crypto.h>

class KRYSecret
{
public:
    static constexpr std::size_t s_size = 32;

    KRYSecret() = default;
    ~KRYSecret() { wipe(); }

    KRYSecret(KRYSecret const&) = delete;
    KRYSecret& operator=(KRYSecret const&) = delete;

    void wipe() { OPENSSL_cleanse(m_bytes.data(), s_size); }
    unsigned char* data() { return m_bytes.data(); }
    unsigned char const* data() const { return m_bytes.data(); }

private:
    std::array<unsigned char, s_size> m_bytes{};
};

#endif
