// A small host: starts the library, works, and catches every exception type that can cross its boundary.
// Usage: host EMPTY_DIRECTORY

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>

#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "NEBCore/NEBAssertError.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "NEBCore/NEBStdExceptionError.h"
#include "frame/ARXException.h"
#include "frame/Arxium.h"
#include "text/ARNEBI18NBuffer.h"
#include "url/ARXUriDispatchHelper.h"
#include "zip/ARXZipFile.h"
#include "zip/ARXZipInputStream.h"

namespace
{
// The host's own way to open an archive, which fails with an exception of its own.
void openByFailingTable()
{
    zlib_filefunc_def table{};
    table.zopen_file = [](voidpf, char const*, int) -> voidpf { throw std::length_error("no such file"); };
    ARXZipInputStream const stream(&table);
}

// Whether action raises something that the host can catch as Type, and that says it is of that class.
template <class Type>
bool raises(char const* name, void (*action)())
{
    try
    {
        action();
    }
    catch (Type const& caught)
    {
        auto const& error = dynamic_cast<NEBThrowable const&>(caught);
        return std::strcmp(error.getThrowableName(), name) == 0 && !error.getBackTrace().empty();
    }
    catch (...)
    {
    }
    std::cerr << name << " can't be caught\n";
    return false;
}

bool catchesEverything()
{
    auto* const closeNoEntry = +[] { ARXZipFile().closeFileInZip(); };
    return raises<ARXException>("ARXException", closeNoEntry) &&
           raises<NEBMessageSet>("ARXException", closeNoEntry) &&
           raises<NEBThrowable>("ARXException", closeNoEntry) &&
           raises<NEBException>("NEBException",
                                [] { NEBConfigurationStore::getStore().load("/nowhere/at/all"); }) &&
           raises<NEBAssertError>("NEBAssertError", [] { Arxium::terminate(); }) &&
           raises<NEBOutOfMemoryError>("NEBOutOfMemoryError",
                                       [] { ARNEBI18NBuffer().reserve(std::uint64_t{1} << 62); }) &&
           raises<NEBStdExceptionError>("NEBStdExceptionError", openByFailingTable);
}

bool signs(std::string const& directory)
{
    setenv("XDG_STATE_HOME", directory.c_str(), 1);  // where the first start makes the key
    Arxium::initialize();
    std::string url;
    ARXUriDispatchHelper::genGatewayUrlForFile("/data/report.pdf", url, "session", false);
    Arxium::terminate();
    return url.find("&k=") != std::string::npos;
}
}  // namespace

int main(int, char** arguments)
{
    return catchesEverything() && signs(arguments[1]) ? 0 : 1;
}
