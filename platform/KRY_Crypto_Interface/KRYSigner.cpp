#include "KRY_Crypto_Interface/KRYSigner.h"

#include <openssl/core_names.h>
#include <openssl/params.h>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYKeyDerivation.h"

namespace
{
constexpr char s_salt[] = "KRY-CSKHMAC-1";

EVP_MAC_CTX* newHmac()
{
    std::unique_ptr<EVP_MAC, decltype(&EVP_MAC_free)> const hmac(EVP_MAC_fetch(nullptr, "HMAC", nullptr),
                                                                 EVP_MAC_free);
    requireCrypto(hmac != nullptr, "EVP_MAC_fetch");
    return EVP_MAC_CTX_new(hmac.get());
}
}  // namespace

KRYSigner::KRYSigner(KRYSecret const& masterKey, std::string const& serviceID)
    : m_context(newHmac(), EVP_MAC_CTX_free)
{
    requireCrypto(m_context != nullptr, "EVP_MAC_CTX_new");
    KRYSecret key;
    KRYKeyDerivation::derive(masterKey, s_salt, serviceID, key);
    char digest[] = "SHA2-256";
    OSSL_PARAM const parameters[] = {OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, digest, 0),
                                     OSSL_PARAM_construct_end()};
    requireCrypto(EVP_MAC_init(m_context.get(), key.data(), KRYSecret::s_size, parameters) == 1,
                  "EVP_MAC_init");
}

KRYSigner::Digest KRYSigner::sign(char const* data, std::uint32_t size)
{
    Digest digest;
    std::size_t digestSize = 0;
    auto const* const bytes = reinterpret_cast<unsigned char const*>(data);
    requireCrypto(EVP_MAC_init(m_context.get(), nullptr, 0, nullptr) == 1 &&
                      EVP_MAC_update(m_context.get(), bytes, size) == 1 &&
                      EVP_MAC_final(m_context.get(), digest.data(), &digestSize, digest.size()) == 1 &&
                      digestSize == digest.size(),
                  "EVP_MAC");
    return digest;
}
