// Lack of memory.

#ifndef NEBCORE_NEBOUTOFMEMORYERROR_H
#define NEBCORE_NEBOUTOFMEMORYERROR_H

#include "NEBCore/NEBTextError.h"

class NEBCORE_API NEBOutOfMemoryError : public NEBTextErrorOf<NEBOutOfMemoryError>
{
public:
    // text is copied and may be null.
    NEBOutOfMemoryError(std::int32_t code, char const* text);

    char const* getThrowableName() const override;
};

#endif
