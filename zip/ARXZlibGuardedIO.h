// minizip's table of I/O functions over a host's own, which may raise exceptions.
//
// minizip is C: an exception that passed through it would lose its memory. So each function here keeps what
// the host's function raises and reports a failure to minizip; the caller of minizip raises it afterwards.

#ifndef ARXIUM_ZIP_ARXZLIBGUARDEDIO_H
#define ARXIUM_ZIP_ARXZLIBGUARDEDIO_H

#include <exception>

#include <minizip/ioapi.h>

struct ZlibGuard
{
    zlib_filefunc_def_s m_functions;  // the host's
    std::exception_ptr m_raised;  // until it is raised again, no function of the host runs but zclose_file
};

// Fills the whole table, with the guard as its opaque word. The guard must outlive the use of the table.
void fillZlibGuardedIO(zlib_filefunc_def_s* table, ZlibGuard* guard);

// Raises what a function of the host raised since the last call.
void rethrowRaised(ZlibGuard& guard);

#endif
