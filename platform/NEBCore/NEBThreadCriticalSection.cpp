#include "NEBCore/NEBThreadCriticalSection.h"

namespace
{
// A few microseconds in all, about what it costs to be put to sleep and woken.
int constexpr s_tries = 50;
int constexpr s_pausesPerTry = 8;  // each try takes the lock's cache line from the thread that holds it

#if defined(__x86_64__)
void pauseProcessor()
{
    __builtin_ia32_pause();
}
#else
void pauseProcessor() {}
#endif
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
