// Details of the crypto interface: texts that say why a call failed. The interface allocates them, the caller
// frees them.

#ifndef ARXIUM_FRAME_ARXDETAILS_H
#define ARXIUM_FRAME_ARXDETAILS_H

#include <cstdint>

// Frees details, which may be null, and clears the pointer.
void freeDetails(char*& details);

// Calls a function of the interface whose last argument receives details, and returns its status. The caller
// then frees the details. If the function raises a C++ exception, they are freed before it passes on.
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
