#include "bench/GrowthWork.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "NEBCore/NEBByteBuffer.h"
#include "bench/BenchInput.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "path/ARXFmDir.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "url/ARXHelper.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"
#include "zip/ARXZipInputStream.h"

namespace
{
std::size_t constexpr s_pieceSize = 64 << 10;

using Work = std::function<void()>;

void require(bool holds, char const* what)
{
    if (!holds)
        throw std::runtime_error(what);
}

// Calls take(data, size) until size bytes have gone, the same piece again and again.
template <class Take>
void feed(std::string const& piece, std::size_t size, Take const& take)
{
    for (std::size_t left = size; left != 0;)
    {
        std::size_t const count = std::min(left, piece.size());
        take(piece.data(), count);
        left -= count;
    }
}

std::string largeFile(std::size_t size)
{
    std::string path = scratchFolder() + "/large.txt";
    std::unique_ptr<std::FILE, decltype(&std::fclose)> const file(std::fopen(path.c_str(), "wb"),
                                                                  std::fclose);
    feed(makeText(mixedText, s_pieceSize), size,
         [&](char const* data, std::size_t count)
         { require(std::fwrite(data, 1, count, file.get()) == count, "no room for the input"); });
    return path;
}

void addLargeFile(std::string const& archivePath, std::string const& file)
{
    ARXZipFile archive;
    archive.create(archivePath.c_str());
    archive.addFile(file.c_str(), nullptr);
}

std::string largeArchive(std::size_t size)
{
    std::string path = scratchFolder() + "/made.zip";
    addLargeFile(path, largeFile(size));
    return path;
}

std::string archiveOfEntries(std::size_t count)
{
    std::string path = scratchFolder() + "/made.zip";
    writeArchive(path, count, 100);
    return path;
}

class NullTarget : public OJDOutputStream
{
public:
    void write(char const*, std::size_t) override {}
};

Work quotedPrintable(std::size_t size)
{
    return [size, piece = makeText(mixedText, s_pieceSize)]
    {
        NullTarget target;
        ARXOJDQuotedPrintableOutputStream stream(target, false);
        feed(piece, size, [&](char const* data, std::size_t count) { stream.write(data, count); });
    };
}

Work percentEncoding(std::size_t size)
{
    auto const text = std::make_shared<std::u16string>(size / 2, u'x');
    return [text]
    {
        NEBByteBuffer output(256, 256);
        ARXHelper::urlEncode(text->data(), 2 * text->size(), output, false);
    };
}

Work encryptedFile(std::size_t size)
{
    auto const library = std::make_shared<StartedLibrary>();
    return [size, library, piece = makeText(mixedText, s_pieceSize)]
    {
        ARXOJDSecureFileOutputStream stream;
        stream.setSecureType(ARXOJDSecureFileOutputStream::secureTypeEncrypted);
        stream.open((scratchFolder() + "/encrypted").c_str());
        feed(piece, size, [&](char const* data, std::size_t count) { stream.write(data, count); });
        stream.close();
    };
}

Work addFile(std::size_t size)
{
    return [file = largeFile(size)] { addLargeFile(scratchFolder() + "/made.zip", file); };
}

Work unzip(std::string const& archive)
{
    return [archive]
    {
        std::string const folder = scratchFolder() + "/extracted";
        require(ARXUnzipFile::unzip(archive.c_str(), folder.c_str(), false), "not unzipped");
    };
}

Work locateLast(std::size_t count)
{
    auto const stream = std::make_shared<ARXZipInputStream>(archiveOfEntries(count).c_str());
    std::string const last = entryName(count - 1);
    return [stream, last] { require(stream->locate(last.c_str()), "not found"); };
}

Work openSessions(std::size_t count)
{
    auto const library = std::make_shared<StartedLibrary>();
    return [count, library]
    {
        for (std::size_t number = 0; number < count; ++number)
        {
            std::string const document = "<sessionConfigDocument><serviceID>BENCH" + std::to_string(number) +
                                         "</serviceID></sessionConfigDocument>";
            ARXKRYHandleFactory::destroyHandle(ARXKRYHandleFactory::createHandle(
                document.c_str(),
                "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></"
                "setInfoDocument>"));
        }
    };
}

// Every third element removes the one before it.
Work normalizedPath(std::size_t count)
{
    std::string path;
    for (std::size_t number = 0; number < count; ++number)
        path += number % 3 == 2 ? "/.." : "/element";
    return [path]
    {
        std::string result;
        ARXFmDir::getNormalizedPath(path, result);
    };
}

}  // namespace

std::map<std::string, GrowthWork> const& growthWorks()
{
    static std::map<std::string, GrowthWork> const s_works = {
        {"quoted-printable text", {true, quotedPrintable}},
        {"percent encoding", {true, percentEncoding}},
        {"encrypted file", {true, encryptedFile}},
        {"zip: a file added", {true, addFile}},
        {"zip: a file extracted", {true, [](std::size_t size) { return unzip(largeArchive(size)); }}},
        {"zip: entries added",
         {false, [](std::size_t count) { return [count] { archiveOfEntries(count); }; }}},
        {"zip: entries extracted", {false, [](std::size_t count) { return unzip(archiveOfEntries(count)); }}},
        {"zip: the last entry located", {false, locateLast}},
        {"sessions opened", {false, openSessions}},
        {"path elements normalised", {false, normalizedPath}}};
    return s_works;
}
