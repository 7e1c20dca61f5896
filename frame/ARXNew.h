// Guarded allocation.

#ifndef ARXIUM_FRAME_ARXNEW_H
#define ARXIUM_FRAME_ARXNEW_H

#include "frame/ARXRaise.h"

// Evaluates an expression that gives a new object, a new expression or a factory call, and assigns it to
// target. A null result and std::bad_alloc leave as NEBOutOfMemoryError, another std::exception as
// NEBStdExceptionError; a NEBThrowable gains an entry in its back trace. target is unchanged if the
// expression throws.
#define NEB_NEW(target, ...)             \
    do                                   \
    {                                    \
        try                              \
        {                                \
            (target) = __VA_ARGS__;      \
            if (!(target))               \
                outOfMemory(NEB_HERE);   \
        }                                \
        catch (...)                      \
        {                                \
            rethrowAllocation(NEB_HERE); \
        }                                \
    } while (false)

#endif
