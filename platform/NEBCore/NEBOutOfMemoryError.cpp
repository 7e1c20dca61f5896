#include "NEBCore/NEBOutOfMemoryError.h"

NEBOutOfMemoryError::NEBOutOfMemoryError(std::int32_t code, char const* text) : NEBTextErrorOf(code, text) {}

char const* NEBOutOfMemoryError::getThrowableName() const
{
    return "NEBOutOfMemoryError";
}
