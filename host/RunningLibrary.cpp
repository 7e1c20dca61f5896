#include "host/RunningLibrary.h"

#include <string>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "frame/Arxium.h"
#include "host/Failure.h"

namespace
{
char constexpr s_startDocument[] = "<initializeDocument><serviceID>arxhost</serviceID></initializeDocument>";
char constexpr s_stopDocument[] = "<terminateDocument><serviceID>arxhost</serviceID></terminateDocument>";

std::string takeDetails(char* details)
{
    std::string const text = details ? details : "The crypto interface does not start.";
    KRY_CryptoFree(details, nullptr);
    return text;
}
}  // namespace

RunningCrypto::RunningCrypto()
{
    char* details = nullptr;
    if (!KRY_SUCCEEDED(KRY_CryptoInitialize(s_startDocument, nullptr, &details)))
        failed(NEB_HERE, takeDetails(details));
}

RunningCrypto::~RunningCrypto()
{
    KRY_CryptoTerminate(s_stopDocument, nullptr, nullptr);
}

RunningLibrary::RunningLibrary()
{
    Arxium::initialize();
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
