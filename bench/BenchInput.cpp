#include "bench/BenchInput.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "frame/Arxium.h"
#include "zip/ARXZipFile.h"

namespace
{
using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t limit)
{
    // The distributions of the standard library differ from one to the next.
    return static_cast<std::size_t>(random() % limit);
}

std::string makeWord(unsigned number)
{
    Random letters(number);
    std::string word(2 + below(letters, 9), ' ');
    for (char& letter : word)
        letter = static_cast<char>('a' + below(letters, 26));
    return word;
}

// One of some 4000 words, a few of them much more frequent. Each is made once: seeding costs more than a
// line.
std::string const& pickWord(Random& random)
{
    static std::vector<std::string> s_words(64 * 64);
    std::size_t const number = below(random, 64) * below(random, 64);
    if (s_words[number].empty())
        s_words[number] = makeWord(static_cast<unsigned>(number));
    return s_words[number];
}

// Accents, ideographs, "=" and tabs.
void spice(Random& random, std::string& word)
{
    char const* const odd[] = {"\xC3\xA9", "\xC3\xBC", "\xE2\x82\xAC", "\xE6\xBC\xA2\xE5\xAD\x97", "=", "\t"};
    if (below(random, 5) == 0)
        word.insert(below(random, word.size()), odd[below(random, std::size(odd))]);
}

std::string makeLines(Random& random, std::size_t size, bool mixed)
{
    std::string text;
    std::size_t lineStart = 0;
    std::size_t lineSize = 40 + below(random, 60);
    while (text.size() < size)
    {
        std::string word = pickWord(random);
        if (mixed)
            spice(random, word);
        text += word;
        bool const isFull = text.size() - lineStart > lineSize;
        text += !isFull ? " " : mixed ? "\r\n" : "\n";
        if (isFull)
        {
            lineStart = text.size();
            lineSize = 40 + below(random, 60);
        }
    }
    text.resize(size);
    for (auto at = text.rbegin(); at != text.rend() && (*at & 0x80) != 0; ++at)
        *at = 'x';  // no cut character
    return text;
}

struct Scratch
{
    Scratch()
    {
        std::string pattern =
            (std::filesystem::exists("/dev/shm") ? "/dev/shm"
                                                 : std::filesystem::temp_directory_path().string()) +
            "/arxium-bench-XXXXXX";
        if (!::mkdtemp(pattern.data()))
            throw std::runtime_error("no folder can be made for the benchmarks");
        m_path = pattern;
    }
    ~Scratch() { std::filesystem::remove_all(m_path); }

    std::string m_path;
};

}  // namespace

std::string makeText(int kind, std::size_t size, unsigned seed)
{
    Random random(seed);
    if (kind == fileName)
        return std::string("Quarterly Report (final) 2007-03_v2.pdf").substr(0, size);
    if (kind != binaryText)
        return makeLines(random, size, kind == mixedText);
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random() >> 32);
    return bytes;
}

std::u16string toUtf16(std::string const& text)
{
    std::u16string units;
    for (std::size_t i = 0; i < text.size();)
    {
        auto const lead = static_cast<unsigned char>(text[i]);
        std::size_t const more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : 2;
        unsigned unit = more == 0 ? lead : lead & (0x3Fu >> more);
        for (std::size_t k = 1; k <= more; ++k)
            unit = unit << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        units += static_cast<char16_t>(unit);
        i += 1 + more;
    }
    return units;
}

std::string const& scratchFolder()
{
    static Scratch const s_scratch;
    return s_scratch.m_path;
}

std::string readFile(std::string const& path)
{
    std::string bytes(static_cast<std::size_t>(std::filesystem::file_size(path)), '\0');
    std::ifstream file(path, std::ios::binary);
    if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw std::runtime_error(path + " can't be read");
    return bytes;
}

void writeFile(std::string const& path, std::string const& bytes)
{
    std::ofstream file(path, std::ios::binary);
    if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw std::runtime_error(path + " can't be written");
}

StartedLibrary::StartedLibrary()
{
    std::string const keyPath = scratchFolder() + "/master.key";
    writeFile(keyPath, makeText(binaryText, 32));
    std::filesystem::permissions(keyPath, std::filesystem::perms::owner_read);
    NEBConfigurationStore& store = NEBConfigurationStore::getStore();
    store.setValue("cryptoKeyFile", keyPath.c_str());
    store.setValue("gatewayUrl", "https://gateway.example.com/arxium/cgi-bin/gateway");
    store.setValue("dispatcherID", "dispatcher1");
    Arxium::initialize();
}

StartedLibrary::~StartedLibrary()
{
    Arxium::terminate();
}

void makeTree(std::string const& folder, bool smallOnly)
{
    Random random(99);
    for (unsigned number = 0; number < 2000; ++number)
    {
        std::filesystem::path const directory = std::filesystem::path(folder) /
                                                ("dir" + std::to_string(number % 40)) /
                                                ("sub" + std::to_string(number % 5));
        std::filesystem::create_directories(directory);
        writeFile((directory / ("file" + std::to_string(number) + ".txt")).string(),
                  makeText(mixedText, 512 + below(random, 7680), number + 10));
    }
    for (int const kind : {asciiText, mixedText, binaryText})
        if (!smallOnly)
            writeFile(folder + "/big" + std::to_string(kind), makeText(kind, 20000000));
}

std::string entryName(std::size_t number)
{
    return "dir" + std::to_string(number / 50) + "/file" + std::to_string(number) + ".txt";
}

void writeArchive(std::string const& path, std::size_t count, std::size_t entrySize)
{
    ARXZipFile archive;
    archive.create(path.c_str());
    std::string text = makeText(mixedText, entrySize);
    for (std::size_t number = 0; number < count; ++number)
    {
        archive.openNewFileInZip(entryName(number).c_str(), nullptr, nullptr, ARXZipFile::compressDeflated,
                                 6);
        archive.writeInFileInZip(reinterpret_cast<unsigned char*>(text.data()),
                                 static_cast<unsigned>(text.size()));
    }
}

std::string makeArchive(std::size_t count, std::size_t entrySize)
{
    std::string const path = scratchFolder() + "/made.zip";
    writeArchive(path, count, entrySize);
    return readFile(path);
}
