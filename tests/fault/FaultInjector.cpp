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

// The function behind this program's: the C library's, or that of a sanitizer. Null while it is being looked
// for: that may free, but needs nothing itself.
template <auto& function>
auto* behind(char const* name)
{
    static decltype(&function) s_found = nullptr;
    static bool s_looking = false;
    if (!s_looking)
    {
        s_looking = true;
        void* const found = dlsym(RTLD_NEXT, name);
        std::memcpy(&s_found, &found, sizeof s_found);
    }
    return s_found;
}
}  // namespace

#pragma GCC visibility push(default)  // the libraries shall find them
extern "C"
{
    void* malloc(std::size_t size)
    {
        auto* const next = behind<malloc>("malloc");
        return refusesAllocation() || !next ? nullptr : noted(next(size));
    }

    void* calloc(std::size_t count, std::size_t size)
    {
        auto* const next = behind<calloc>("calloc");
        return refusesAllocation() || !next ? nullptr : noted(next(count, size));
    }

    void* aligned_alloc(std::size_t alignment, std::size_t size)
    {
        auto* const next = behind<aligned_alloc>("aligned_alloc");
        return refusesAllocation() || !next ? nullptr : noted(next(alignment, size));
    }

    void* realloc(void* memory, std::size_t size)
    {
        auto* const next = behind<realloc>("realloc");
        void* const moved = refusesAllocation() || !next ? nullptr : next(memory, size);
        if (moved)
            forget(memory), noted(moved);
        return moved;
    }

    void free(void* memory)
    {
        forget(memory);
        if (auto* const next = behind<free>("free"))
            next(memory);
    }
}

#ifdef ARXIUM_REPLACE_NEW
// The sanitizer's own don't come by malloc.
void* operator new(std::size_t size)
{
    void* const memory = malloc(size);
    return memory ? memory : throw std::bad_alloc();
}
void* operator new(std::size_t size, std::align_val_t alignment)
{
    void* const memory = aligned_alloc(static_cast<std::size_t>(alignment), size);
    return memory ? memory : throw std::bad_alloc();
}
#pragma GCC diagnostic ignored "-Wattribute-alias"     // for the arguments that are not looked at
#pragma GCC diagnostic ignored "-Wmissing-attributes"  // which the C library gives its declarations
void* operator new[](std::size_t) __attribute__((alias("_Znwm")));
void* operator new(std::size_t, std::nothrow_t const&) noexcept __attribute__((alias("malloc")));
void* operator new[](std::size_t, std::nothrow_t const&) noexcept __attribute__((alias("malloc")));
void operator delete(void*) noexcept __attribute__((alias("free")));
void operator delete[](void*) noexcept __attribute__((alias("free")));
void operator delete(void*, std::size_t) noexcept __attribute__((alias("free")));
void operator delete[](void*, std::size_t) noexcept __attribute__((alias("free")));
void operator delete(void*, std::align_val_t) noexcept __attribute__((alias("free")));
void operator delete(void*, std::size_t, std::align_val_t) noexcept __attribute__((alias("free")));
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

void onSystemCall(int, siginfo_t*, void* context)
{
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    long const number = registers[REG_RAX];
    bool const isTransfer =
        number == SYS_read || number == SYS_write || number == SYS_pread64 || number == SYS_pwrite64;
    bool const isChosen = s_plan.m_kind == FaultPlan::systemCallFails || isTransfer;
    bool const fails = s_armed && isChosen && ++s_count == s_plan.m_point;
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

    std::uint8_t constexpr watched = sizeof s_watched / sizeof *s_watched;
    sock_filter filter[6 + watched];
    sock_filter* end = filter;
    *end++ = BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[5]));
    *end++ = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, s_passes, watched + 1, 0);
    *end++ = BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr));
    for (std::uint8_t steps = watched; steps > 0; --steps)
        *end++ = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, s_watched[watched - steps], steps, 0);
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
