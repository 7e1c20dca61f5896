// Keys of 32 bytes, which are wiped before their memory is given up.

#ifndef KRY_CRYPTO_INTERFACE_KRYSECRET_H
#define KRY_CRYPTO_INTERFACE_KRYSECRET_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <openssl/crypto.h>

class KRYSecret
{
public:
    static constexpr std::size_t s_size = 32;

    KRYSecret() = default;
    // Derived from another key by HKDF with SHA-256 (RFC 5869). Equal arguments give equal keys, in every
    // process and on every machine. info begins with a label, which names the purpose and ends in a colon:
    // so no salt or service id makes a key serve two purposes.
    KRYSecret(KRYSecret const& source, std::string_view salt, std::string const& info);
    ~KRYSecret() { OPENSSL_cleanse(m_bytes.data(), s_size); }

    KRYSecret(KRYSecret const&) = delete;
    KRYSecret& operator=(KRYSecret const&) = delete;

    unsigned char* data() { return m_bytes.data(); }
    unsigned char const* data() const { return m_bytes.data(); }

private:
    std::array<unsigned char, s_size> m_bytes{};
};

// Whole pages, kept out of swap space and core dumps as far as the system lets a process do so. The memory is
// zero. Raises std::bad_alloc.
void* allocateLocked(std::size_t size);
// The size is that of the allocation. Whoever had keys there has wiped them.
void freeLocked(void* memory, std::size_t size) noexcept;

// The allocator of such memory.
template <class T>
struct KRYLockedMemory
{
    using value_type = T;
    using propagate_on_container_move_assignment = std::true_type;  // keys can't be moved one by one

    T* allocate(std::size_t count) { return static_cast<T*>(allocateLocked(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t count) noexcept { freeLocked(memory, count * sizeof(T)); }

    friend bool operator==(KRYLockedMemory const&, KRYLockedMemory const&) noexcept { return true; }
    friend bool operator!=(KRYLockedMemory const&, KRYLockedMemory const&) noexcept { return false; }
};

// The master keys, in the order of the key file. The first signs and seals; each opens what it sealed.
using KRYMasterKeys = std::vector<KRYSecret, KRYLockedMemory<KRYSecret>>;

#endif
