// SHA256_*, which always succeeds, is deprecated, but EVP has no state that can be copied without an
// allocation.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "KRY_Crypto_Interface/KRYSigner.h"

#include <openssl/crypto.h>

namespace
{
// Writes in place: a state that is returned could leave a copy of itself in memory.
void startHash(SHA256_CTX& state, KRYSecret const& key, unsigned char pad)
{
    std::array<unsigned char, SHA256_CBLOCK> block;
    block.fill(pad);
    for (std::size_t i = 0; i < KRYSecret::s_size; ++i)
        block[i] ^= key.data()[i];
    SHA256_Init(&state);
    SHA256_Update(&state, block.data(), block.size());
    OPENSSL_cleanse(block.data(), block.size());
}
}  // namespace

KRYSigner::KRYSigner(KRYSecret const& masterKey, std::string const& serviceID)
{
    KRYSecret const key(masterKey, "", "KRY signature 2:" + serviceID);
    startHash(m_inner, key, 0x36);
    startHash(m_outer, key, 0x5C);
}

KRYSigner::~KRYSigner()
{
    OPENSSL_cleanse(&m_inner, sizeof m_inner);
    OPENSSL_cleanse(&m_outer, sizeof m_outer);
}

KRYSigner::Digest KRYSigner::sign(char const* data, std::uint32_t size) const
{
    Digest digest;
    SHA256_CTX state = m_inner;
    SHA256_Update(&state, data, size);
    SHA256_Final(digest.data(), &state);
    state = m_outer;
    SHA256_Update(&state, digest.data(), digest.size());
    SHA256_Final(digest.data(), &state);
    OPENSSL_cleanse(&state, sizeof state);
    return digest;
}
