#include "frame/ARXRaise.h"

#include <exception>
#include <new>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBAssertError.h"
#include "NEBCore/NEBMessageString.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "NEBCore/NEBStdExceptionError.h"
#include "frame/ARXDetails.h"
#include "frame/ARXException.h"

namespace
{
char constexpr s_throwMacro[] = "NEB_THROW";
char constexpr s_rethrowMacro[] = "NEB_RETHROW";

void addText(ARXException& error, char const* text)
{
    try
    {
        error << NEBMessageString(I18NString(text, nullptr, -1, nullptr, nullptr));
    }
    catch (...)
    {
        return;  // lack of memory loses the message, not the error; the details must still be freed
    }
}
}  // namespace

void assertionFailed(NEBFileLocation const& where, char const* text)
{
    NEBAssertError(0, text).hurl(where, nullptr, s_throwMacro);
}

void raiseWithText(NEBFileLocation const& where, std::initializer_list<char const*> texts,
                   char const* operation)
{
    ARXException error(1, 0);
    for (char const* text : texts)
        addText(error, text);
    error.hurl(where, operation, s_throwMacro);
}

void raiseWithDetails(NEBFileLocation const& where, char*& details, char const* operation)
{
    ARXException error(1, 0);
    if (details)
        addText(error, details);
    freeDetails(details);
    error.hurl(where, operation, s_throwMacro);
}

void outOfMemory(NEBFileLocation const& where)
{
    NEBOutOfMemoryError(0, nullptr).hurl(where, nullptr, s_throwMacro);
}

void rethrowAllocation(NEBFileLocation const& where)
{
    try
    {
        throw;
    }
    catch (NEBThrowable& error)
    {
        error.addBackTrace(where, nullptr, s_rethrowMacro);
        throw;
    }
    catch (std::bad_alloc const&)
    {
        outOfMemory(where);
    }
    catch (std::exception const& error)
    {
        NEBStdExceptionError(error).hurl(where, nullptr, s_throwMacro);
    }
}
