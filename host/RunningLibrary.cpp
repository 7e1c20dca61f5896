#include "RunningLibrary.h"

#include "Failure.h"
#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "frame/Arxium.h"

namespace
{
// What Arxium::initialize raises doesn't say why the crypto interface refused; the interface keeps it.
std::string takeStartFailure()
{
    char* details = nullptr;
    KRY_CryptoGetLastErrorDetails(nullptr, nullptr, &details);
    std::string text = details ? details : "";
    KRY_CryptoFree(details, nullptr);
    return text;
}
}  // namespace

RunningLibrary::RunningLibrary()
{
    try
    {
        Arxium::initialize();
    }
    catch (NEBThrowable const& error)
    {
        std::string const reason = takeStartFailure();
        if (reason.empty())
            throw;
        failedBy(error, reason);
    }
}

RunningLibrary::~RunningLibrary()
{
    try
    {
        Arxium::terminate();
    }
    catch (...)
    {
        return;  // nobody can be told any more
    }
}
