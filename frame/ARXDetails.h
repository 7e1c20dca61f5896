// Details texts of the crypto interface: why a call failed. The interface allocates them, whoever asked for
// them gives them back.

#ifndef ARXIUM_FRAME_ARXDETAILS_H
#define ARXIUM_FRAME_ARXDETAILS_H

#include <cstdint>

// Gives details back to the interface, if there are any, and clears the pointer.
void freeDetails(char*& details);

// Calls a function of the interface whose last argument receives details, which start null; gives its status.
// The details are the caller's then. A C++ exception out of the function passes on, and nothing is left to
// free.
template <class... Parameters, class... Arguments>
std::int32_t callForDetails(char*& details, std::int32_t (*function)(Parameters...), Arguments... arguments)
{
    details = nullptr;
    try
    {
        return function(arguments..., &details);
    }
    catch (...)
    {
        freeDetails(details);
        throw;
    }
}

#endif
