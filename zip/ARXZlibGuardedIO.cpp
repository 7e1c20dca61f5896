#include "zip/ARXZlibGuardedIO.h"

#include <utility>

namespace
{
template <class Result, class Call>
Result keepRaised(ZlibGuard& guard, Result failure, Call const& call)
{
    try
    {
        return call(guard.m_functions);
    }
    catch (...)
    {
        if (!guard.m_raised)
            guard.m_raised = std::current_exception();
        return failure;
    }
}

template <class Result, class Call>
Result runGuarded(voidpf opaque, Result failure, Call const& call)
{
    auto& guard = *static_cast<ZlibGuard*>(opaque);
    return guard.m_raised ? failure : keepRaised(guard, failure, call);
}

voidpf openGuarded(voidpf opaque, char const* name, int mode)
{
    return runGuarded(opaque, voidpf{}, [&](auto& host) { return host.zopen_file(host.opaque, name, mode); });
}

uLong readGuarded(voidpf opaque, voidpf stream, void* buf, uLong size)
{
    return runGuarded(opaque, uLong{0},
                      [&](auto& host) { return host.zread_file(host.opaque, stream, buf, size); });
}

uLong writeGuarded(voidpf opaque, voidpf stream, void const* buf, uLong size)
{
    return runGuarded(opaque, uLong{0},
                      [&](auto& host) { return host.zwrite_file(host.opaque, stream, buf, size); });
}

long tellGuarded(voidpf opaque, voidpf stream)
{
    return runGuarded(opaque, -1L, [&](auto& host) { return host.ztell_file(host.opaque, stream); });
}

long seekGuarded(voidpf opaque, voidpf stream, uLong offset, int origin)
{
    return runGuarded(opaque, -1L,
                      [&](auto& host) { return host.zseek_file(host.opaque, stream, offset, origin); });
}

// Also after a failure: the host's stream is open.
int closeGuarded(voidpf opaque, voidpf stream)
{
    return keepRaised(*static_cast<ZlibGuard*>(opaque), -1,
                      [&](auto& host) { return host.zclose_file(host.opaque, stream); });
}

int hasErrorGuarded(voidpf opaque, voidpf stream)
{
    return runGuarded(opaque, -1, [&](auto& host) { return host.zerror_file(host.opaque, stream); });
}
}  // namespace

void fillZlibGuardedIO(zlib_filefunc_def_s* table, ZlibGuard* guard)
{
    *table = {openGuarded, readGuarded,  writeGuarded,    tellGuarded,
              seekGuarded, closeGuarded, hasErrorGuarded, guard};
}

void rethrowRaised(ZlibGuard& guard)
{
    if (guard.m_raised)
        std::rethrow_exception(std::exchange(guard.m_raised, nullptr));
}
