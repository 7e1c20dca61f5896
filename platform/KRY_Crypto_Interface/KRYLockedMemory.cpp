#include "KRY_Crypto_Interface/KRYLockedMemory.h"

#include <new>

#include <sys/mman.h>

void* KRYLockedPages::allocate(std::size_t size)
{
    void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    // Both may be refused, locking where RLIMIT_MEMLOCK is used up. The keys serve all the same.
    static_cast<void>(::mlock(memory, size));
    static_cast<void>(::madvise(memory, size, MADV_DONTDUMP));
    return memory;
}

void KRYLockedPages::free(void* memory, std::size_t size) noexcept
{
    ::munmap(memory, size);
}
