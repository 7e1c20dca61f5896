// Lack of memory.
//
// Example:
//     #include "text/ARNEBI18NBuffer.h"
//     ARNEBI18NBuffer buffer;
//     bool fits = true;
//     try { buffer.reserve(1ull << 62); }
//     catch (NEBOutOfMemoryError const&) { fits = false; }  // the buffer is as it was

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
