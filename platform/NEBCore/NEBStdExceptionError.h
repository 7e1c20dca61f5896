// A standard exception that passed a guarded place; its message is what() of the exception.

#ifndef NEBCORE_NEBSTDEXCEPTIONERROR_H
#define NEBCORE_NEBSTDEXCEPTIONERROR_H

#include <exception>

#include "NEBCore/NEBTextError.h"

class NEBCORE_API NEBStdExceptionError : public NEBTextErrorOf<NEBStdExceptionError>
{
public:
    explicit NEBStdExceptionError(std::exception const& caught);

    char const* getThrowableName() const override;
};

#endif
