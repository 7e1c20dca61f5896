#include "zip/ARXZipEntryRules.h"

namespace
{
// Encrypted, patch data, strong encryption, masked directory (APPNOTE.TXT, 4.4.4).
std::uint32_t constexpr s_unreadableFlags = 1u << 0 | 1u << 5 | 1u << 6 | 1u << 13;
std::uint32_t constexpr s_stored = 0;
}  // namespace

bool openReadableEntry(unzFile zipFile, std::uint32_t flag, std::uint32_t method)
{
    bool const isReadable = (flag & s_unreadableFlags) == 0 && (method == s_stored || method == Z_DEFLATED);
    return isReadable && unzOpenCurrentFile(zipFile) == UNZ_OK;
}
