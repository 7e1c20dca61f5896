#include "fault/FaultInjector.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <execinfo.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace
{
FaultPlan s_plan;
bool s_armed = false;
long s_count = 0;
char* s_trace = nullptr;

void* s_live[1 << 14];  // what was allocated while armed
std::size_t s_liveCount = 0;

void noteFailure()
{
    s_armed = false;  // what follows may allocate
    void* frames[24];
    int const count = backtrace(frames, 24);
    for (int i = 0; i < count; ++i)
    {
        Dl_info info;
        if (!dladdr(frames[i], &info) || !info.dli_fname)
            continue;
        char const* const name = info.dli_sname ? info.dli_sname : std::strrchr(info.dli_fname, '/') + 1;
        std::size_t const used = std::strlen(s_trace);
        std::snprintf(s_trace + used, sizeof(FaultTrace) - used, " %.90s", name);
    }
    s_armed = true;
}

bool refusesAllocation()
{
    bool const refuses =
        s_armed && ((s_plan.m_kind == FaultPlan::oneAllocation && ++s_count == s_plan.m_point) ||
                    (s_plan.m_kind == FaultPlan::allAllocations && ++s_count >= s_plan.m_point));
    if (!refuses)
        return false;
    noteFailure();
    errno = ENOMEM;
    return true;
}

void* noted(void* memory)
{
    if (s_armed && memory && s_liveCount < sizeof s_live / sizeof *s_live)
        s_live[s_liveCount++] = memory;
    return memory;
}

void forget(void* memory)
{
    void** const end = s_live + s_liveCount;
    void** const found = std::find(s_live, end, memory);
    if (found != end)
        *found = s_live[--s_liveCount];
}

// The functions behind this program's: the C library's, or those of a sanitizer.
struct Allocator
{
    void* (*m_malloc)(std::size_t);
    void* (*m_calloc)(std::size_t, std::size_t);
    void* (*m_realloc)(void*, std::size_t);
    void (*m_free)(void*);
};

template <class Function>
void look(Function& function, char const* name)
{
    void* const found = dlsym(RTLD_NEXT, name);
    std::memcpy(&function, &found, sizeof function);
}

// Null while they are being looked for: that may free, but needs nothing itself.
Allocator const* behind()
{
    static Allocator s_allocator;
    static bool s_looking;
    if (!s_allocator.m_free && !s_looking)
    {
        s_looking = true;
        look(s_allocator.m_malloc, "malloc");
        look(s_allocator.m_calloc, "calloc");
        look(s_allocator.m_realloc, "realloc");
        look(s_allocator.m_free, "free");
    }
    return s_allocator.m_free ? &s_allocator : nullptr;
}
}  // namespace

#pragma GCC visibility push(default)  // the libraries shall find them
extern "C"
{
    void* malloc(std::size_t size)
    {
        return refusesAllocation() || !behind() ? nullptr : noted(behind()->m_malloc(size));
    }

    void* calloc(std::size_t count, std::size_t size)
    {
        return refusesAllocation() || !behind() ? nullptr : noted(behind()->m_calloc(count, size));
    }

    void* realloc(void* memory, std::size_t size)
    {
        if (refusesAllocation() || !behind())
            return nullptr;
        void* const moved = behind()->m_realloc(memory, size);
        if (moved)
            forget(memory), noted(moved);
        return moved;
    }

    void free(void* memory)
    {
        forget(memory);
        if (behind())
            behind()->m_free(memory);
    }
}

#ifdef ARXIUM_REPLACE_NEW
// The sanitizer's own don't come by malloc.
void* operator new(std::size_t size)
{
    if (void* const memory = malloc(size))
        return memory;
    throw std::bad_alloc();
}
#pragma GCC diagnostic ignored "-Wattribute-alias"  // for the arguments that are not looked at
void* operator new[](std::size_t) __attribute__((alias("_Znwm")));
void* operator new(std::size_t, std::nothrow_t const&) noexcept __attribute__((alias("malloc")));
void* operator new[](std::size_t, std::nothrow_t const&) noexcept __attribute__((alias("malloc")));
void operator delete(void*) noexcept __attribute__((alias("free")));
void operator delete[](void*) noexcept __attribute__((alias("free")));
void operator delete(void*, std::size_t) noexcept __attribute__((alias("free")));
void operator delete[](void*, std::size_t) noexcept __attribute__((alias("free")));
#endif
#pragma GCC visibility pop

#ifdef __x86_64__
namespace
{
// A sixth argument, which no watched call has, marks those that the filter lets pass.
constexpr std::uint32_t s_passes = 0x5A17F1A6;

// The result as the kernel gives it: errors are negative.
long passSystemCall(long number, greg_t const* registers)
{
    long const result = syscall(number, registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                                registers[REG_R10], registers[REG_R8], s_passes);
    return result == -1 ? -errno : result;
}

bool isChosen(long number)
{
    bool const isTransfer =
        number == SYS_read || number == SYS_write || number == SYS_pread64 || number == SYS_pwrite64;
    return s_armed && (s_plan.m_kind == FaultPlan::systemCallFails ||
                       (s_plan.m_kind == FaultPlan::systemCallIsShort && isTransfer));
}

void onSystemCall(int, siginfo_t*, void* context)
{
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    long const number = registers[REG_RAX];
    bool const fails = isChosen(number) && ++s_count == s_plan.m_point;
    int const errnoBefore = errno;
    if (fails)
    {
        noteFailure();
        if (s_plan.m_error == FaultPlan::s_killed)
            kill(getpid(), SIGKILL);
        if (s_plan.m_kind == FaultPlan::systemCallIsShort && registers[REG_RDX] > 1)
            registers[REG_RDX] /= 2;
    }
    long const error = fails ? -s_plan.m_error : 0;
    // A close releases the descriptor whatever it reports.
    long const done = error == 0 || number == SYS_close ? passSystemCall(number, registers) : 0;
    registers[REG_RAX] = error == 0 ? done : error;
    errno = errnoBefore;
}

constexpr std::uint32_t s_watched[] = {
    SYS_read,       SYS_write,    SYS_pread64,   SYS_pwrite64,   SYS_open,       SYS_openat,
    SYS_close,      SYS_stat,     SYS_fstat,     SYS_lstat,      SYS_statx,      SYS_newfstatat,
    SYS_lseek,      SYS_access,   SYS_faccessat, SYS_faccessat2, SYS_mkdir,      SYS_mkdirat,
    SYS_rename,     SYS_renameat, SYS_renameat2, SYS_link,       SYS_linkat,     SYS_unlink,
    SYS_unlinkat,   SYS_fsync,    SYS_fdatasync, SYS_utimensat,  SYS_getdents64, SYS_readlink,
    SYS_readlinkat, SYS_getcwd};

// From now on, for the rest of the process.
bool watchSystemCalls()
{
    struct sigaction action = {};
    action.sa_sigaction = onSystemCall;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    sigaction(SIGSYS, &action, nullptr);

    std::size_t const watched = sizeof s_watched / sizeof *s_watched;
    sock_filter filter[6 + watched];
    sock_filter* end = filter;
    auto const load = [&](std::size_t offset)
    { *end++ = BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset)); };
    auto const jumpIf = [&](std::uint32_t value, std::size_t steps)
    { *end++ = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, static_cast<std::uint8_t>(steps), 0); };
    load(offsetof(seccomp_data, args[5]));
    jumpIf(s_passes, watched + 1);
    load(offsetof(seccomp_data, nr));
    for (std::size_t i = 0; i < watched; ++i)
        jumpIf(s_watched[i], watched - i);
    *end++ = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    *end++ = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP);
    sock_fprog const program{static_cast<unsigned short>(end - filter), filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}
}  // namespace
#else
static bool watchSystemCalls()
{
    return false;
}
#endif

bool FaultInjector::prepare(FaultPlan const& plan, FaultTrace& trace)
{
    s_plan = plan, s_trace = trace;
    s_count = 0, s_liveCount = 0;
    void* frame;
    backtrace(&frame, 1);  // loads what it needs
    return plan.m_kind < FaultPlan::systemCallFails || watchSystemCalls();
}

void FaultInjector::arm(bool armed)
{
    s_armed = armed;
}

std::size_t FaultInjector::liveAllocations()
{
    return s_liveCount;
}
