// What the benchmarks work on: the same bytes in every run, made without files from outside.

#ifndef ARXIUM_BENCH_BENCHINPUT_H
#define ARXIUM_BENCH_BENCHINPUT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

enum TextKind
{
    asciiText,   // words in lines of 40 to 100 columns that end in LF
    mixedText,   // the same with CRLF, and accents, ideographs, "=" or tabs in one word of five
    binaryText,  // random bytes
    fileName     // "Quarterly Report (final) 2007-03_v2.pdf", cut to size
};

std::string makeText(int kind, std::size_t size, unsigned seed = 1);
// UTF-8 of the basic plane in, code units out.
std::u16string toUtf16(std::string const& text);

// A folder of this process in memory (/dev/shm) where there is one, so that no disk is measured. It goes when
// the process ends.
std::string const& scratchFolder();
std::string readFile(std::string const& path);
void writeFile(std::string const& path, std::string const& bytes);

// Keeps the library started, under a configuration and a key of this process' own.
class StartedLibrary
{
public:
    StartedLibrary();
    ~StartedLibrary();

    StartedLibrary(StartedLibrary const&) = delete;
    StartedLibrary& operator=(StartedLibrary const&) = delete;
};

// 2000 text files of 0.5 to 8 KiB in 200 folders, and unless smallOnly three files of 20 MB beside them.
void makeTree(std::string const& folder, bool smallOnly);

// The bytes of an archive of count equal-sized entries of mixed text, and where their compressed bytes lie.
struct ZipEntry
{
    std::string m_name;
    std::size_t m_offset;
    std::size_t m_packedSize;
    std::size_t m_size;
    std::uint32_t m_crc;
    std::uint32_t m_dosDate;
};
std::string makeArchive(std::size_t count, std::size_t entrySize);
std::vector<ZipEntry> listEntries(std::string const& archive);

#endif
