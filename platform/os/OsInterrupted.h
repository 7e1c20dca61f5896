// The one place that repeats a system call which a signal interrupts. Internal.

#ifndef OS_OSINTERRUPTED_H
#define OS_OSINTERRUPTED_H

#include <cerrno>

template <class Call>
auto retryInterrupted(Call const& call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

#endif
