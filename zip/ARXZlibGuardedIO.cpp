#include "zip/ARXZlibGuardedIO.h"

#include <utility>

namespace
{
using Table = zlib_filefunc_def_s;

// Calls a function of the host. Keeps what it raises and returns failure instead.
template <auto Table::*function, auto failure, class Result, class... Arguments>
Result callHost(voidpf opaque, Arguments... arguments)
{
    auto& guard = *static_cast<ZlibGuard*>(opaque);
    try
    {
        return (guard.m_functions.*function)(guard.m_functions.opaque, arguments...);
    }
    catch (...)
    {
        if (!guard.m_raised)
            guard.m_raised = std::current_exception();
        return failure;
    }
}

// The same, unless a function of the host has raised before.
template <auto Table::*function, auto failure, class Result, class... Arguments>
Result callSoundHost(voidpf opaque, Arguments... arguments)
{
    if (static_cast<ZlibGuard*>(opaque)->m_raised)
        return failure;
    return callHost<function, failure, Result>(opaque, arguments...);
}
}  // namespace

void fillZlibGuardedIO(zlib_filefunc_def_s* table, ZlibGuard* guard)
{
    *table = {callSoundHost<&Table::zopen_file, nullptr>,
              callSoundHost<&Table::zread_file, 0>,
              callSoundHost<&Table::zwrite_file, 0>,
              callSoundHost<&Table::ztell_file, -1>,
              callSoundHost<&Table::zseek_file, -1>,
              callHost<&Table::zclose_file, -1>,  // after a failure too: the host's stream is open
              callSoundHost<&Table::zerror_file, -1>,
              guard};
}

void rethrowRaised(ZlibGuard& guard)
{
    if (guard.m_raised)
        std::rethrow_exception(std::exchange(guard.m_raised, nullptr));
}
