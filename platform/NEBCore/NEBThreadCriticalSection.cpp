#include "NEBCore/NEBThreadCriticalSection.h"

#include <pthread.h>

NEBThreadCriticalSection::NEBThreadCriticalSection(int)
{
    *m_mutex.native_handle() = PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP;  // tries before it sleeps
}
