#include "KRY_Crypto_Interface/KRYSecret.h"

#include <new>

#include <openssl/hmac.h>
#include <sys/mman.h>

#include "KRY_Crypto_Interface/KRYError.h"

KRYSecret::KRYSecret(KRYSecret const& source, std::string_view salt, std::string const& info)
{
    // HKDF extracts, and then expands to blocks; the first block is the key.
    KRYSecret extracted;
    std::string const block = info + '\1';
    requireCrypto(
        HMAC(EVP_sha256(), salt.data(), static_cast<int>(salt.size()), source.data(), s_size,
             extracted.data(), nullptr) &&
            HMAC(EVP_sha256(), extracted.data(), int{s_size},
                 reinterpret_cast<unsigned char const*>(block.data()), block.size(), data(), nullptr),
        "HMAC");
}

void* allocateLocked(std::size_t size)
{
    void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    // Both may be refused, locking where RLIMIT_MEMLOCK is used up. The keys serve all the same.
    static_cast<void>(::mlock(memory, size));
    static_cast<void>(::madvise(memory, size, MADV_DONTDUMP));
    return memory;
}

void freeLocked(void* memory, std::size_t size) noexcept
{
    ::munmap(memory, size);
}
