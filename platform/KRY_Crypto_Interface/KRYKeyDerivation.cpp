#include "KRY_Crypto_Interface/KRYKeyDerivation.h"

#include <algorithm>
#include <memory>

#include <openssl/core_names.h>
#include <openssl/kdf.h>
#include <openssl/params.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
OSSL_PARAM bytes(char const* name, void const* data, std::size_t size)
{
    return OSSL_PARAM_construct_octet_string(name, const_cast<void*>(data), size);  // is only read
}

void derive(KRYSecret const& masterKey, std::string_view salt, std::string const& info, KRYSecret& result)
{
    std::unique_ptr<EVP_KDF, decltype(&EVP_KDF_free)> const hkdf(EVP_KDF_fetch(nullptr, "HKDF", nullptr),
                                                                 EVP_KDF_free);
    requireCrypto(hkdf != nullptr, "EVP_KDF_fetch");
    std::unique_ptr<EVP_KDF_CTX, decltype(&EVP_KDF_CTX_free)> const context(EVP_KDF_CTX_new(hkdf.get()),
                                                                            EVP_KDF_CTX_free);
    requireCrypto(context != nullptr, "EVP_KDF_CTX_new");

    char digest[] = "SHA2-256";
    OSSL_PARAM const parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest, 0),
        bytes(OSSL_KDF_PARAM_KEY, masterKey.data(), KRYSecret::s_size),
        bytes(OSSL_KDF_PARAM_SALT, salt.data(), salt.size()),
        bytes(OSSL_KDF_PARAM_INFO, info.data(), info.size()),
        OSSL_PARAM_construct_end(),
    };
    requireCrypto(EVP_KDF_derive(context.get(), result.data(), KRYSecret::s_size, parameters) == 1,
                  "EVP_KDF_derive");
}
}  // namespace

KRYKeyDerivation::KeyID KRYKeyDerivation::getKeyID(KRYSecret const& masterKey)
{
    KRYSecret derived;
    derive(masterKey, "", "KRY key id 2:", derived);
    KeyID id;
    std::copy_n(derived.data(), id.size(), id.begin());
    return id;
}

void KRYKeyDerivation::deriveSignatureKey(KRYSecret const& masterKey, std::string const& serviceID,
                                          KRYSecret& result)
{
    derive(masterKey, "", "KRY signature 2:" + serviceID, result);
}

void KRYKeyDerivation::deriveFileKey(KRYSecret const& masterKey, std::string_view salt,
                                     std::string_view header, std::string const& serviceID, KRYSecret& result)
{
    derive(masterKey, salt, std::string("KRY file 2:").append(header).append(serviceID), result);
}
