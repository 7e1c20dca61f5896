// Runs one operation of the public classes for faults.py: once to fill what is kept for good, once with a
// fault, and once more, which must succeed whatever failed before and leave nothing allocated or open.
//
// Exit code 0 means that the operation succeeded, 2 that it reported a failure in a documented way, 1 that a
// rule is broken, which standard error names.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <list>
#include <map>
#include <memory>
#include <sstream>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "crypto/ARXKRYDataPtr.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "fault/FaultShim.h"
#include "frame/ARXException.h"
#include "frame/ARXMessage.h"
#include "frame/Arxium.h"
#include "path/ARXFmDir.h"
#include "streams/ARXDomWriterOJDOutputStream.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "support/TemporaryFolder.h"
#include "text/ARNEBI18NBuffer.h"
#include "url/ARXUriDispatchHelper.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"
#include "zip/ARXZipInputStream.h"

namespace
{
std::string const s_long(1000, 'n');

void mustHold(bool holds, char const* rule)
{
    if (holds)
        return;
    std::cerr << "broken: " << rule << '\n';
    std::_Exit(1);
}

struct Running
{
    Running() { Arxium::initialize(); }
    ~Running()
    {
        Arxium::terminate();
        char const stop[] = "<terminateDocument><serviceID>Arxium</serviceID></terminateDocument>";
        mustHold(KRY_CryptoTerminate(stop, nullptr, nullptr) < 0, "the last stop needs no memory");
    }
};

bool writeArchive()
{
    ARXZipFile zip;
    I18NString const comment("comment");
    zip.create("out.zip");
    zip.addDirectory("tree", nullptr, true, true);
    zip.openNewFileInZip("piece", nullptr, &comment, ARXZipFile::compressDeflated, 9);
    unsigned char bytes[] = "bytes";
    zip.writeInFileInZip(bytes, sizeof bytes);
    zip.closeFileInZip();
    zip.close();
    return true;
}

bool readEntries(ARXZipInputStream&& stream)
{
    std::string name;
    NEBByteBuffer bytes(16, 16);
    ARXZipInputStream::zipEntry entry;
    return stream.getFirstEntry() && stream.getCurrentEntryName(name) && stream.getCurrentEntryInfo(entry) &&
           stream.openCurrentEntry() && stream.read(bytes, 100) == entry.uncompressedSize &&
           stream.locate("b\\c") && stream.openCurrentEntry() && stream.read() != OJDInputStream::s_end;
}

bool readArchive()
{
    static std::string const bytes = readAll("in.zip");  // before the fault
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen("in.zip", "rb"), std::fclose);
    return file && ARXUnzipFile::unzip("in.zip", "extracted", false) &&
           readEntries(ARXZipInputStream("in.zip")) && readEntries(ARXZipInputStream(file.get())) &&
           readEntries(ARXZipInputStream(bytes.data(), bytes.size()));
}

bool writeStreams()
{
    Running const library;
    ARXOJDSecureFileOutputStream sealed;
    sealed.setSecureType(ARXOJDSecureFileOutputStream::secureTypeEncrypted);
    sealed.open("out");
    sealed.write(s_long.data(), s_long.size());
    sealed.close();
    ARXOJDSecureFileOutputStream plain;
    plain.setSecureType(ARXOJDSecureFileOutputStream::secureTypePlain);
    plain.open("plain");
    ARXOJDQuotedPrintableOutputStream quoted(plain, true);
    ARXDomWriterOJDOutputStream writer(quoted);
    writer.write(s_long.data(), 1000);
    writer.endline();
    return true;
}

// Empty after a failure.
std::string sign(ARXSimpleKRYHandleI& handle)
{
    char* digest = nullptr;
    std::size_t size = 0;
    bool const succeeded = handle.protectData("data", 4, &digest, &size, nullptr) >= 0;
    ARXKRYDataPtr const owner(&handle, digest);
    mustHold(!succeeded || size == 32, "success means a digest");
    return std::string(digest ? digest : "", size);
}

bool useHandles()
{
    char const session[] = "<sessionConfigDocument><serviceID>ID</serviceID></sessionConfigDocument>";
    char const signing[] =
        "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>";
    Running const library;
    ARXKRYHandleI* const own = ARXKRYHandleFactory::createHandle();
    ARXSimpleKRYHandleIPtr const owner(own);
    own->persistentInitialize(session, nullptr);
    own->setInfo(signing, nullptr);
    ARXSimpleKRYHandleIPtr const shared(ARXKRYHandleFactory::createHandle(session, signing));
    return !sign(*own).empty() && !sign(*shared).empty();
}

// What sessions keep of a failure must not use up the memory that the runtime sets aside for exceptions.
bool failInManySessions()
{
    char const session[] = "<sessionConfigDocument><serviceID>ID</serviceID></sessionConfigDocument>";
    Running const library;
    std::list<ARXSimpleKRYHandleIPtr> handles;
    while (handles.size() < 600)
    {
        ARXKRYHandleI* const handle = ARXKRYHandleFactory::createHandle();
        ARXSimpleKRYHandleIPtr owner(handle);
        handle->persistentInitialize(session, nullptr);
        handles.emplace_back(nullptr);
        handles.back().reset(owner.release());
    }
    auto const isNotSetUp = [](ARXSimpleKRYHandleIPtr& handle)
    {
        char* data = nullptr;
        std::size_t size = 0;
        return handle->protectData("data", 4, &data, &size, nullptr) == -3;
    };
    return std::count_if(handles.begin(), handles.end(), isNotSetUp) == 600;
}

// A failed call must leave the text that it would have set.
template <class Call>
void setsWholly(std::string& text, Call const& call)
{
    std::string const before = text;
    try
    {
        call();
    }
    catch (...)
    {
        mustHold(text == before, "a failure leaves the old text");
        throw;
    }
}

bool makeUrl()
{
    Running const library;
    std::string url = "before";
    setsWholly(url,
               [&] { ARXUriDispatchHelper::generateByteServingUrlFromBasePath(s_long, "session", url); });
    ARXUriDispatchHelper::genExternalDispatcherUrlForFile("a/file", url, "session", true);
    return true;
}

bool useTexts()
{
    std::string path = "before";
    setsWholly(path, [&] { ARXFmDir::getNormalizedPath("C:\\long/../way/./to\\" + s_long, path); });
    setsWholly(path, [&] { ARXFmDir::getAbsolutePath("some/relative/path/of some length", path); });
    I18NString const text("a text that does not fit into the object itself");
    ARNEBI18NBuffer buffer(text);
    buffer += buffer;
    std::ostringstream stream;
    stream << ARNEBI18NBuffer(buffer);
    ARXMessage message(1u);
    ARXException raised(text.c_str());
    raised << message;
    std::unique_ptr<NEBThrowable> const copy(raised.clone());
    ARXException const wrapper(raised, &message);
    mustHold(wrapper.getMessage() && copy->getMessage(), "an exception has a text");
    return stream.good();
}

// With the settings of a file and a new key.
bool start()
{
    std::remove("arxium/master.key");
    NEBConfigurationStore::getStore().load("settings");
    Running const library;
    std::error_code isUnknown;
    auto const size = std::filesystem::file_size("arxium/master.key", isUnknown);
    mustHold(isUnknown || size == 32, "a start means a whole key");
    return true;
}

std::map<std::string, bool (*)()> const s_operations = {{"write-archive", writeArchive},
                                                        {"read-archive", readArchive},
                                                        {"streams", writeStreams},
                                                        {"handles", useHandles},
                                                        {"sessions", failInManySessions},
                                                        {"url", makeUrl},
                                                        {"texts", useTexts},
                                                        {"start", start}};

bool succeeds(bool (*operation)())
{
    try
    {
        return operation();
    }
    catch (NEBThrowable const&)
    {
        return false;
    }
    catch (std::bad_alloc const&)
    {
        return false;
    }
}

long countDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}
}  // namespace

int main(int, char** arguments)
{
    auto* const operation = s_operations.at(arguments[1]);
    mustHold(succeeds(operation), "the operation succeeds without a fault");
    long const allocations = countLiveAllocations(), descriptors = countDescriptors();
    beginFaults();
    bool const succeeded = succeeds(operation);
    endFaults();
    mustHold(succeeds(operation), "the operation succeeds after a fault");
    mustHold(countLiveAllocations() <= allocations, "nothing stays allocated");
    mustHold(countDescriptors() <= descriptors, "nothing stays open");
    std::cerr << (succeeded ? "" : "a failure was reported\n");
    return succeeded ? 0 : 2;
}
