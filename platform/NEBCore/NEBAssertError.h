// A failed assertion. Its message is exactly the assertion's text.
//
// Example:
//     #include "frame/Arxium.h"
//     #include <string>
//     std::string assertion;
//     try { Arxium::terminate(); }  // without a start
//     catch (NEBAssertError const& error) { assertion = error.getMessage(); }

#ifndef NEBCORE_NEBASSERTERROR_H
#define NEBCORE_NEBASSERTERROR_H

#include "NEBCore/NEBTextError.h"

class NEBCORE_API NEBAssertError : public NEBTextErrorOf<NEBAssertError>
{
public:
    // text is copied and may be null.
    NEBAssertError(std::int32_t code, char const* text);

    char const* getThrowableName() const override;
};

#endif
