// Makes all other keys from a master key, by HKDF with SHA-256 (RFC 5869). Each purpose has a label of its
// own at the beginning of HKDF's info, so no salt or service id makes a key serve two purposes.
//
// Equal arguments give equal keys, in every process and on every machine.

#ifndef KRY_CRYPTO_INTERFACE_KRYKEYDERIVATION_H
#define KRY_CRYPTO_INTERFACE_KRYKEYDERIVATION_H

#include <array>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYSecret.h"

class KRYKeyDerivation
{
public:
    static constexpr std::size_t s_keyIDSize = 8;
    using KeyID = std::array<unsigned char, s_keyIDSize>;

    // Tells master keys apart and says nothing about them: no salt, info "KRY key id 2:".
    static KeyID getKeyID(KRYSecret const& masterKey);

    // A service's key for signatures: no salt, info "KRY signature 2:" and the service id.
    static void deriveSignatureKey(KRYSecret const& masterKey, std::string const& serviceID,
                                   KRYSecret& result);

    // The key of one file: the salt of its header, info "KRY file 2:", the whole header and the service id.
    static void deriveFileKey(KRYSecret const& masterKey, std::string_view salt, std::string_view header,
                              std::string const& serviceID, KRYSecret& result);
};

#endif
