#include "bench/GrowthWork.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBUtCrc32.h"
#include "bench/BenchInput.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "path/ARXFmDir.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "text/ARNEBI18NBuffer.h"
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

void addEntries(std::string const& archivePath, std::size_t count)
{
    ARXZipFile archive;
    archive.create(archivePath.c_str());
    std::string text = makeText(mixedText, 100);
    for (std::size_t number = 0; number < count; ++number)
    {
        std::string const name = "dir" + std::to_string(number / 100) + "/file" + std::to_string(number);
        archive.openNewFileInZip(name.c_str(), nullptr, nullptr, ARXZipFile::compressDeflated, 6);
        archive.writeInFileInZip(reinterpret_cast<unsigned char*>(text.data()),
                                 static_cast<unsigned>(text.size()));
    }
}

std::string archiveOfEntries(std::size_t count)
{
    std::string path = scratchFolder() + "/made.zip";
    addEntries(path, count);
    return path;
}

void readEntries(std::string const& path)
{
    ARXZipInputStream stream(path.c_str());
    std::string piece(s_pieceSize, '\0');
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
    {
        require(stream.openCurrentEntry(), "an entry can't be opened");
        while (stream.read(piece.data(), piece.size()) != SIZE_MAX)
            continue;
    }
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

Work checksum(std::size_t size)
{
    auto const bytes = std::make_shared<std::string>(size, 'x');
    return [bytes] { require(NEBUtCrc32::crc32(0, bytes->data(), bytes->size()) != 0, "no checksum"); };
}

Work bufferWithChecksum(std::size_t size)
{
    auto const text = std::make_shared<std::u16string>(size / 2 - 1, u'X');
    return [text]
    {
        ARNEBI18NBuffer const buffer(reinterpret_cast<unsigned short const*>(text->c_str()));
        require(buffer.getCssCrc() != 0, "no checksum");
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
    std::string const last = "dir" + std::to_string((count - 1) / 100) + "/file" + std::to_string(count - 1);
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

// Every other element is taken away again by the "..", so that both ways are walked.
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

Work commandPath(std::size_t count)
{
    std::string path;
    for (std::size_t number = 0; number < count; ++number)
        path += number % 2 == 0 ? "/element" : "/an element";
    return [path]
    {
        I18NString text(path.c_str());
        ARXHelper::fixCommandPath(text);
    };
}
}  // namespace

std::map<std::string, GrowthWork> const& worksByBytes()
{
    static std::map<std::string, GrowthWork> const s_works = {
        {"quoted-printable text", quotedPrintable},
        {"percent encoding", percentEncoding},
        {"checksum", checksum},
        {"UTF-16 buffer and its folded checksum", bufferWithChecksum},
        {"encrypted file", encryptedFile},
        {"zip: a file added", addFile},
        {"zip: a file extracted", [](std::size_t size) { return unzip(largeArchive(size)); }},
        {"zip: an entry read as a stream",
         [](std::size_t size) -> Work { return [path = largeArchive(size)] { readEntries(path); }; }}};
    return s_works;
}

std::map<std::string, GrowthWork> const& worksByEntries()
{
    static std::map<std::string, GrowthWork> const s_works = {
        {"zip: entries added",
         [](std::size_t count) -> Work
         { return [count] { addEntries(scratchFolder() + "/made.zip", count); }; }},
        {"zip: entries extracted", [](std::size_t count) { return unzip(archiveOfEntries(count)); }},
        {"zip: entries read as a stream",
         [](std::size_t count) -> Work { return [path = archiveOfEntries(count)] { readEntries(path); }; }},
        {"zip: the last entry located", locateLast},
        {"sessions opened", openSessions},
        {"path elements normalised", normalizedPath},
        {"command path elements", commandPath}};
    return s_works;
}
