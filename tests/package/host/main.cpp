// A small host: starts the library, works, and catches every exception type that can cross its boundary.
// Usage: host EMPTY_DIRECTORY

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "NEBCore/NEBAssertError.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "NEBCore/NEBStdExceptionError.h"
#include "frame/ARXException.h"
#include "frame/Arxium.h"
#include "url/ARXUriDispatchHelper.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"

namespace
{
enum class Allocation
{
    Works,
    Fails,
    Throws
};

Allocation s_nextAllocation = Allocation::Works;
}  // namespace

void* operator new(std::size_t size)
{
    Allocation const next = s_nextAllocation;
    s_nextAllocation = Allocation::Works;
    if (next == Allocation::Throws)
        throw std::length_error("no such object");
    void* memory = next == Allocation::Fails ? nullptr : std::malloc(size);
    return memory ? memory : throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace
{
void closeNoEntry()
{
    ARXZipFile().closeFileInZip();
}

void stopTooOften()
{
    Arxium::terminate();
}

void loadNothing()
{
    NEBConfigurationStore::getStore().load("/nowhere/at/all");
}

template <Allocation next>
void cloneWithoutMemory()
{
    ARXException const original(1, 0);
    s_nextAllocation = next;
    std::unique_ptr<NEBThrowable> clone(original.clone());
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
    return raises<ARXException>("ARXException", closeNoEntry) &&
           raises<NEBMessageSet>("ARXException", closeNoEntry) &&
           raises<NEBThrowable>("ARXException", closeNoEntry) &&
           raises<NEBException>("NEBException", loadNothing) &&
           raises<NEBAssertError>("NEBAssertError", stopTooOften) &&
           raises<NEBOutOfMemoryError>("NEBOutOfMemoryError", cloneWithoutMemory<Allocation::Fails>) &&
           raises<NEBStdExceptionError>("NEBStdExceptionError", cloneWithoutMemory<Allocation::Throws>);
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

bool packsAndUnpacks(std::string const& directory)
{
    std::string const archive = directory + "/a.zip";
    unsigned char text[] = "text";
    ARXZipFile zip;
    zip.create(archive.c_str());
    zip.openNewFileInZip("a.txt", nullptr, nullptr, ARXZipFile::compressDeflated, 6);
    zip.writeInFileInZip(text, sizeof text);
    zip.close();
    return ARXUnzipFile::unzip(archive.c_str(), directory.c_str(), false);
}
}  // namespace

int main(int, char** arguments)
{
    std::string const directory = arguments[1];
    return catchesEverything() && signs(directory) && packsAndUnpacks(directory) ? 0 : 1;
}
