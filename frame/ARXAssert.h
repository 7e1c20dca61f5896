// Assertions. They stay on in every build and raise NEBAssertError, which callers may catch; its text is the
// macro call as the source spells it, and hosts rely on these texts.

#ifndef ARXIUM_FRAME_ARXASSERT_H
#define ARXIUM_FRAME_ARXASSERT_H

#include "frame/ARXRaise.h"

// The text is made right here: one more macro in between would unfold NULL and KRY_SUCCEEDED in it.
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
