#include "NEBCore/NEBThreadCriticalSection.h"

namespace
{
// Some five microseconds in all, about what it costs to be put to sleep and woken.
int constexpr s_tries = 50;
int constexpr s_pausesPerTry = 8;  // a try takes the lock's cache line away from its holder

void pauseProcessor()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}
}  // namespace

void NEBThreadCriticalSection::waitAndLock()
{
    for (int tried = 0; tried < s_tries; ++tried)
    {
        for (int paused = 0; paused < s_pausesPerTry; ++paused)
            pauseProcessor();
        if (m_mutex.try_lock())
            return;
    }
    m_mutex.lock();
}
