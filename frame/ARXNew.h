// Guarded allocation.

#ifndef ARXIUM_FRAME_ARXNEW_H
#define ARXIUM_FRAME_ARXNEW_H

#include "frame/ARXRaise.h"

// Assigns the result of a new expression or a factory call to target. A null result and std::bad_alloc become
// NEBOutOfMemoryError, another std::exception becomes NEBStdExceptionError; a NEBThrowable gets an entry in
// its back trace. target is unchanged if the expression throws.
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
