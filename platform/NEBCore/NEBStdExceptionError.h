// Another standard exception that left a guarded allocation. Its message is that exception's what().
//
// Example:
//     #include <stdexcept>
//     try { throw std::runtime_error("no such file"); }
//     catch (std::exception const& caught)
//     {
//         NEBStdExceptionError(caught).hurl(NEB_HERE, "Loader::load", "NEB_THROW");
//     }

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
