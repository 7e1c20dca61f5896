#include "KRY_Crypto_Interface/KRYFileHeader.h"

#include <algorithm>

#include <openssl/rand.h>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYKeyDerivation.h"

namespace
{
constexpr std::array<unsigned char, 12> s_fixedPart{'K', 'R', 'Y', 'E', 'N', 'C', 2, 1, 0, 1, 0, 0};
constexpr std::size_t s_keyIDOffset = s_fixedPart.size();
constexpr std::size_t s_saltOffset = s_keyIDOffset + KRYKeyDerivation::s_keyIDSize;
constexpr std::size_t s_saltSize = KRYFileHeader::s_size - s_saltOffset;
}  // namespace

KRYFileHeader::KRYFileHeader(KRYMasterKeys const& keys) : m_masterKey(&keys.front())
{
    KRYKeyDerivation::KeyID const id = KRYKeyDerivation::getKeyID(*m_masterKey);
    std::copy(s_fixedPart.begin(), s_fixedPart.end(), m_bytes.begin());
    std::copy(id.begin(), id.end(), m_bytes.begin() + s_keyIDOffset);
    requireCrypto(RAND_bytes(&m_bytes[s_saltOffset], int{s_saltSize}) == 1, "RAND_bytes");
}

KRYFileHeader::KRYFileHeader(KRYMasterKeys const& keys, Bytes const& read) : m_bytes(read)
{
    if (!std::equal(s_fixedPart.begin(), s_fixedPart.end(), m_bytes.begin()))
        throw KRYError(KRY_ERROR_DAMAGED, "the file is not encrypted in a format that is known");
    auto const sealedIt = [&](KRYSecret const& key)
    {
        KRYKeyDerivation::KeyID const id = KRYKeyDerivation::getKeyID(key);
        return std::equal(id.begin(), id.end(), m_bytes.begin() + s_keyIDOffset);
    };
    auto const found = std::find_if(keys.begin(), keys.end(), sealedIt);
    if (found == keys.end())
        throw KRYError(KRY_ERROR_DAMAGED, "the file was written under a key that the key file does not hold");
    m_masterKey = &*found;
}

void KRYFileHeader::deriveFileKey(std::string const& serviceID, KRYSecret& result) const
{
    std::string_view const text(reinterpret_cast<char const*>(m_bytes.data()), m_bytes.size());
    KRYKeyDerivation::deriveFileKey(*m_masterKey, text.substr(s_saltOffset), text, serviceID, result);
}
