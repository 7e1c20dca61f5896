#include "NEBCore/NEBAssertError.h"

NEBAssertError::NEBAssertError(std::int32_t code, char const* text) : NEBTextErrorOf(code, text) {}

char const* NEBAssertError::getThrowableName() const
{
    return "NEBAssertError";
}
