// An allocator of memory for keys: kept out of swap space and core dumps as far as the system lets a process
// do so. Each allocation takes whole pages.

#ifndef KRY_CRYPTO_INTERFACE_KRYLOCKEDMEMORY_H
#define KRY_CRYPTO_INTERFACE_KRYLOCKEDMEMORY_H

#include <cstddef>
#include <type_traits>

class KRYLockedPages
{
public:
    // Raises std::bad_alloc. The memory is zero.
    static void* allocate(std::size_t size);
    // The size is that of the allocation. Whoever had keys there has wiped them.
    static void free(void* memory, std::size_t size) noexcept;
};

template <class T>
class KRYLockedMemory
{
public:
    using value_type = T;
    using propagate_on_container_move_assignment = std::true_type;  // keys can't be moved one by one

    KRYLockedMemory() = default;
    template <class Other>
    KRYLockedMemory(KRYLockedMemory<Other> const&) noexcept
    {
    }

    T* allocate(std::size_t count) { return static_cast<T*>(KRYLockedPages::allocate(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t count) noexcept
    {
        KRYLockedPages::free(memory, count * sizeof(T));
    }

    friend bool operator==(KRYLockedMemory const&, KRYLockedMemory const&) noexcept { return true; }
    friend bool operator!=(KRYLockedMemory const&, KRYLockedMemory const&) noexcept { return false; }
};

#endif
