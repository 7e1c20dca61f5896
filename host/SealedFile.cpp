#include "host/SealedFile.h"

#include <memory>
#include <vector>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCore/NEBFmFile.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "host/Failure.h"
#include "host/PlacedFile.h"
#include "streams/ARXOJDSecureFileOutputStream.h"

namespace
{
std::size_t constexpr s_pieceSize = 65536;

struct GiveBack
{
    void operator()(ARXKRYHandleI* handle) const { ARXKRYHandleFactory::destroyHandle(handle); }
};
using Handle = std::unique_ptr<ARXKRYHandleI, GiveBack>;

// Sealed files belong to the service of the stream that wrote them.
Handle openSealed(std::string const& source)
{
    Handle handle(ARXKRYHandleFactory::createHandle());
    handle->persistentInitialize(
        "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>", nullptr);
    std::string const document = "<setInfoDocument><action>DecipherStream</action><fileInput>" + source +
                                 "</fileInput></setInfoDocument>";
    handle->setInfo(document.c_str(), nullptr);
    return handle;
}

// Gives the next piece to sink; false at the authenticated end.
bool readPiece(ARXKRYHandleI& handle, OJDOutputStream& sink, std::string const& source)
{
    char* data = nullptr;
    std::size_t size = 0;
    std::int32_t const status = handle.unprotectData(nullptr, 0, &data, &size, nullptr);
    auto const release = [&handle](char* memory) { handle.cryptoFree(memory, nullptr); };
    std::unique_ptr<char, decltype(release)> const owner(data, release);
    if (!KRY_SUCCEEDED(status))
        failed(NEB_HERE, source + ": is damaged, cut, or sealed under another key");
    if (size != 0)
        sink.write(data, size);
    return size != 0;
}
}  // namespace

void sealFile(std::string const& source, std::string const& target)
{
    NEBFmFile input;
    if (!input.open(source, NEBFmFile::s_readExisting, 0))
        systemFailed(NEB_HERE, source);

    // Destroying the stream finishes its file, so one that is given up must not bear the target's name.
    PlacedFile output(target);
    ARXOJDSecureFileOutputStream stream;
    stream.setSecureType(ARXOJDSecureFileOutputStream::secureTypeEncrypted);
    stream.open(output.getPath().c_str());
    std::vector<char> piece(s_pieceSize);
    std::int64_t count = 0;
    while ((count = input.read(piece.data(), piece.size())) > 0)
        stream.write(piece.data(), static_cast<std::size_t>(count));
    if (count < 0)
        systemFailed(NEB_HERE, source);
    stream.close();
    output.place();
}

void unsealFile(std::string const& source, std::string const& target)
{
    Handle const handle = openSealed(source);
    PlacedFile output(target);
    OJDFileOutputStream stream(output.getPath().c_str(), 0);
    while (readPiece(*handle, stream, source))
        continue;
    stream.close();
    output.place();
}
