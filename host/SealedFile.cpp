#include "SealedFile.h"

#include <cerrno>
#include <memory>

#include "Failure.h"
#include "InputFile.h"
#include "Interrupt.h"
#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "OutputFile.h"
#include "Progress.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"

namespace
{
unsigned constexpr s_ownerOnly = 0600;

// Closing an unfinished session discards its file.
struct CloseSession
{
    void operator()(ARXKRYHandleI* handle) const { ARXKRYHandleFactory::destroyHandle(handle); }
};
using Session = std::unique_ptr<ARXKRYHandleI, CloseSession>;

// Sealed files are those of the library's own encrypted streams, so they belong to that service.
Session openSession(std::string const& setUp)
{
    Session session(ARXKRYHandleFactory::createHandle());
    session->persistentInitialize(
        "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>", nullptr);
    session->setInfo(("<setInfoDocument>" + setUp + "</setInfoDocument>").c_str(), nullptr);
    return session;
}

void protect(ARXKRYHandleI& session, char const* data, std::size_t dataSize, std::string const& target)
{
    char* nothing = nullptr;
    std::size_t size = 0;
    errno = 0;
    std::int32_t const status = session.protectData(data, dataSize, &nothing, &size, nullptr);
    if (status == KRY_ERROR_FILE && errno != 0)
        systemFailed(NEB_HERE, target);
    if (!KRY_SUCCEEDED(status))
        failed(NEB_HERE, target, "can't be written");
}

// Gives the next piece to sink; false at the authenticated end.
bool unprotect(ARXKRYHandleI& session, std::string const& source, Sink const& sink)
{
    char* data = nullptr;
    std::size_t size = 0;
    std::int32_t const status = session.unprotectData(nullptr, 0, &data, &size, nullptr);
    auto const release = [&session](char* memory) { session.cryptoFree(memory, nullptr); };
    std::unique_ptr<char, decltype(release)> const owner(data, release);
    if (status == KRY_ERROR_DAMAGED)
        failed(NEB_HERE, source, "is damaged, cut, or sealed under another key");
    if (!KRY_SUCCEEDED(status))
        failed(NEB_HERE, source, "can't be read");
    if (size != 0)
        sink(data, size);
    return size != 0;
}

void unsealTo(std::string const& source, Sink const& sink)
{
    Session const session = naming(
        source,
        [&] { return openSession("<action>DecipherStream</action><fileInput>" + source + "</fileInput>"); });
    Progress progress;
    auto const counted = [&](char* data, std::size_t size)
    {
        stopIfInterrupted();
        progress.addBytes(size);
        sink(data, size);
    };
    while (unprotect(*session, source, counted))
        continue;
}
}  // namespace

void sealFile(std::string const& source, std::string const& target)
{
    Session const session =
        openSession("<action>CipherStream</action><fileOutput>" + target + "</fileOutput>");
    Progress progress;
    readFile(source,
             [&](char const* data, std::size_t size)
             {
                 protect(*session, data, size, target);
                 progress.addBytes(size);
             });
    session->setInfo("<setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>", nullptr);
    protect(*session, nullptr, 0, target);
}

void unsealFile(std::string const& source, std::string const& target)
{
    if (target == "-")
        return unsealTo(source, printBytes);

    OutputFile output(target, s_ownerOnly);
    unsealTo(source, [&output](char const* data, std::size_t size) { output.write(data, size); });
    output.place();
}
