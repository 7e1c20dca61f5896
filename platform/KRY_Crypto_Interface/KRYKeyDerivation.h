// Makes all other keys from the master key, by HKDF with SHA-256 (RFC 5869).

#ifndef KRY_CRYPTO_INTERFACE_KRYKEYDERIVATION_H
#define KRY_CRYPTO_INTERFACE_KRYKEYDERIVATION_H

#include <string_view>

#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYKeyDerivation
{
public:
    // Fills result. Salt and info are bytes; equal ones give equal keys, in every process and on every
    // machine.
    static void derive(KRYSecret const& masterKey, std::string_view salt, std::string_view info,
                       KRYSecret& result);
};

#endif
