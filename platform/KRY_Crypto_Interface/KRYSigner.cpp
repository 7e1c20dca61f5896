// OpenSSL calls SHA256_* deprecated but keeps it; EVP_MAC is what it wants used.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "KRY_Crypto_Interface/KRYSigner.h"

#include <openssl/crypto.h>

#include "KRY_Crypto_Interface/KRYKeyDerivation.h"

namespace
{
constexpr char s_salt[] = "KRY-CSKHMAC-1";

SHA256_CTX startHash(KRYSecret const& key, unsigned char pad)
{
    std::array<unsigned char, SHA256_CBLOCK> block;
    block.fill(pad);
    for (std::size_t i = 0; i < KRYSecret::s_size; ++i)
        block[i] ^= key.data()[i];
    SHA256_CTX state;
    SHA256_Init(&state);
    SHA256_Update(&state, block.data(), block.size());
    OPENSSL_cleanse(block.data(), block.size());
    return state;
}

KRYSigner::Digest finishHash(SHA256_CTX state, void const* data, std::size_t size)
{
    KRYSigner::Digest digest;
    SHA256_Update(&state, data, size);
    SHA256_Final(digest.data(), &state);
    OPENSSL_cleanse(&state, sizeof state);
    return digest;
}
}  // namespace

KRYSigner::KRYSigner(KRYSecret const& masterKey, std::string const& serviceID)
{
    KRYSecret key;
    KRYKeyDerivation::derive(masterKey, s_salt, serviceID, key);
    m_inner = startHash(key, 0x36);
    m_outer = startHash(key, 0x5C);
}

KRYSigner::~KRYSigner()
{
    OPENSSL_cleanse(&m_inner, sizeof m_inner);
    OPENSSL_cleanse(&m_outer, sizeof m_outer);
}

KRYSigner::Digest KRYSigner::sign(char const* data, std::uint32_t size) const
{
    Digest const inner = finishHash(m_inner, data, size);
    return finishHash(m_outer, inner.data(), inner.size());
}
