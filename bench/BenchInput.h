// What the benchmarks work on: the same bytes in every run.

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
// From UTF-8 of the basic plane.
std::u16string toUtf16(std::string const& text);

// A folder of this process, in memory (/dev/shm) if the machine has it, so that no disk is measured. It is
// removed when the process ends.
std::string const& scratchFolder();
std::string readFile(std::string const& path);
void writeFile(std::string const& path, std::string const& bytes);

// Keeps the library started, with a configuration and a key of its own.
class StartedLibrary
{
public:
    StartedLibrary();
    ~StartedLibrary();

    StartedLibrary(StartedLibrary const&) = delete;
    StartedLibrary& operator=(StartedLibrary const&) = delete;
};

// 2000 text files of 0.5 to 8 KiB in 200 folders, and three files of 20 MB unless smallOnly.
void makeTree(std::string const& folder, bool smallOnly);

// Writes an archive of count entries with one mixed text each.
void writeArchive(std::string const& path, std::size_t count, std::size_t entrySize);
std::string makeArchive(std::size_t count, std::size_t entrySize);  // the same as bytes
std::string entryName(std::size_t number);                          // from 0 on

#endif
