// Lets memory run out, or a read or write fall short, inside an unchanged program. Preload this library:
//
//     FAULT=allocation:12 FAULT_REPORT=report LD_PRELOAD=libarxium_fault.so arxhost list x.zip
//
// The kinds are "allocation" (one allocation fails), "memory" (that one and all later ones fail) and
// "transfer" (a read or write passes half of what it is asked for); the number is the point where the fault
// strikes, from 1. Without FAULT nothing fails. The report receives the back trace of the first failure, and
// at the end "allocations N" and "transfers N", the points that there were.
//
// System calls that fail need no shim: faults.py leaves them to strace, and finds those between "/faults
// begin" and "/faults end" in its log.

#undef _FORTIFY_SOURCE  // brings an inline read of its own under clang

#include "fault/FaultShim.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{
struct Points
{
    std::atomic<long> m_count{0};
    long m_first = 0, m_last = 0;  // those that fail
};
Points s_allocations, s_transfers;
std::atomic<bool> s_counting{false};
std::atomic<long> s_live{0};
int s_report = -1;

bool strikes(Points& points)
{
    if (!s_counting)
        return false;
    long const point = ++points.m_count;
    void* frames[32];
    if (point == points.m_first)
        backtrace_symbols_fd(frames, backtrace(frames, 32), s_report);
    return point >= points.m_first && point <= points.m_last;
}

template <class Call>
void* allocated(Call const& call)
{
    bool const fails = strikes(s_allocations);
    void* const memory = fails ? nullptr : call();
    if (fails)
        errno = ENOMEM;
    s_live += memory != nullptr;
    return memory;
}

std::size_t passed(std::size_t size)
{
    return size > 1 && strikes(s_transfers) ? size / 2 : size;
}

__attribute__((constructor)) void prepare()
{
    void* frame;
    backtrace(&frame, 1);  // loads what it needs
    if (char const* const report = std::getenv("FAULT_REPORT"))
        s_report = open(report, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    char const* const fault = std::getenv("FAULT");
    if (!fault)
        return;
    std::string_view const text(fault), kind = text.substr(0, text.find(':'));
    Points& points = kind == "transfer" ? s_transfers : s_allocations;
    points.m_first = std::atol(fault + kind.size() + 1);
    points.m_last = kind == "memory" ? LONG_MAX : points.m_first;
}

__attribute__((destructor)) void report()
{
    endFaults();
    dprintf(s_report, "allocations %ld\ntransfers %ld\n", s_allocations.m_count.load(),
            s_transfers.m_count.load());
}

// What fails before main, while objects of the program are made, can't be reported by it.
int (*s_main)(int, char**, char**);

int mainWithFaults(int count, char** arguments, char** environment)
{
    if (!std::getenv("FAULT_WAITS"))
        beginFaults();
    return s_main(count, arguments, environment);
}
}  // namespace

void beginFaults()
{
    access("/faults begin", F_OK);
    s_counting = true;
}

void endFaults()
{
    s_counting = false;
    access("/faults end", F_OK);
}

long countLiveAllocations()
{
    return s_live;
}

extern "C"
{
    // The C library's own, by names that nobody replaces.
    void* __libc_malloc(std::size_t);
    void* __libc_calloc(std::size_t, std::size_t);
    void* __libc_realloc(void*, std::size_t);
    void __libc_free(void*);
    ssize_t __read(int, void*, std::size_t);
    ssize_t __write(int, void const*, std::size_t);

    void* malloc(std::size_t size)
    {
        return allocated([=] { return __libc_malloc(size); });
    }
    void* calloc(std::size_t count, std::size_t size)
    {
        return allocated([=] { return __libc_calloc(count, size); });
    }
    void* realloc(void* memory, std::size_t size)
    {
        void* const moved = allocated([=] { return __libc_realloc(memory, size); });
        s_live -= moved && memory;
        return moved;
    }
    void free(void* memory)
    {
        s_live -= memory != nullptr;
        __libc_free(memory);
    }
    ssize_t read(int file, void* bytes, std::size_t size)
    {
        return __read(file, bytes, passed(size));
    }
    ssize_t write(int file, void const* bytes, std::size_t size)
    {
        return __write(file, bytes, passed(size));
    }
    int __libc_start_main(decltype(s_main) main, int count, char** arguments, void (*begin)(), void (*end)(),
                          void (*loaderEnd)(), void* stack)
    {
        s_main = main;
        auto* const next =
            reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
        return next(mainWithFaults, count, arguments, begin, end, loaderEnd, stack);
    }
}
