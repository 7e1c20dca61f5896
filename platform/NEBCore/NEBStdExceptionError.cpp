#include "NEBCore/NEBStdExceptionError.h"

NEBStdExceptionError::NEBStdExceptionError(std::exception const& caught) : NEBTextErrorOf(0, caught.what()) {}

char const* NEBStdExceptionError::getThrowableName() const
{
    return "NEBStdExceptionError";
}
