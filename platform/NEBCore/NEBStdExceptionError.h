// Another standard exception that left a guarded allocation. Its message is that exception's what().

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
