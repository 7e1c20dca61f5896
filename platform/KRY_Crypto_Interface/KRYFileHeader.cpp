#include "KRY_Crypto_Interface/KRYFileHeader.h"

#include <algorithm>

#include <openssl/rand.h>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYKeyDerivation.h"

namespace
{
constexpr std::array<unsigned char, 12> s_fixedPart{'K', 'R', 'Y', 'E', 'N', 'C', 1, 1, 0, 1, 0, 0};
constexpr std::size_t s_keyIDSize = 8;
constexpr std::size_t s_saltOffset = s_fixedPart.size() + s_keyIDSize;

using KeyID = std::array<unsigned char, s_keyIDSize>;

KeyID keyIDOf(KRYSecret const& masterKey)
{
    KRYSecret derived;
    KRYKeyDerivation::derive(masterKey, "KRY-KEYID-1", "", derived);
    KeyID id;
    std::copy_n(derived.data(), id.size(), id.begin());
    return id;
}
}  // namespace

KRYFileHeader::KRYFileHeader(KRYSecret const& masterKey)
{
    KeyID const id = keyIDOf(masterKey);
    auto const behind = std::copy(s_fixedPart.begin(), s_fixedPart.end(), m_bytes.begin());
    std::copy(id.begin(), id.end(), behind);
    requireCrypto(RAND_bytes(&m_bytes[s_saltOffset], static_cast<int>(s_size - s_saltOffset)) == 1,
                  "RAND_bytes");
}

KRYFileHeader::KRYFileHeader(KRYSecret const& masterKey, Bytes const& read) : m_bytes(read)
{
    if (!std::equal(s_fixedPart.begin(), s_fixedPart.end(), m_bytes.begin()))
        throw KRYError(KRY_ERROR_DAMAGED, "the file is not encrypted in a format that is known");
    KeyID const id = keyIDOf(masterKey);
    if (!std::equal(id.begin(), id.end(), m_bytes.begin() + s_fixedPart.size()))
        throw KRYError(KRY_ERROR_DAMAGED, "the file was written under another master key");
}

void KRYFileHeader::deriveFileKey(KRYSecret const& masterKey, std::string const& serviceID,
                                  KRYSecret& result) const
{
    std::string info(getText());
    info += serviceID;
    KRYKeyDerivation::derive(masterKey, getText().substr(s_saltOffset), info, result);
}

std::string_view KRYFileHeader::getText() const
{
    return {reinterpret_cast<char const*>(m_bytes.data()), m_bytes.size()};
}
