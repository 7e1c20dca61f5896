// Assertions, active in every build. A false condition raises NEBAssertError, whose text is the macro call as
// written in the source; hosts rely on these texts.

#ifndef ARXIUM_FRAME_ARXASSERT_H
#define ARXIUM_FRAME_ARXASSERT_H

#include "frame/ARXRaise.h"

// The text is made here: another macro in between would expand NULL and KRY_SUCCEEDED in it.
#define NEB_ASSERT(condition)                                         \
    do                                                                \
    {                                                                 \
        if (!(condition))                                             \
            assertionFailed(NEB_HERE, "NEB_ASSERT(" #condition ");"); \
    } while (false)

#define NEB_ASSERT_NAMED(condition, text)                                              \
    do                                                                                 \
    {                                                                                  \
        if (!(condition))                                                              \
            assertionFailed(NEB_HERE, "NEB_ASSERT_NAMED(" #condition ", " #text ");"); \
    } while (false)

#endif
