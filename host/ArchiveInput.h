// An archive to read from, named by a path or "-" for standard input, whose every byte is checked.
//
// What can't be read raises NEBException. It names the archive; of an entry it gives the reason alone, to
// which the caller adds the name.

#ifndef ARXHOST_ARCHIVEINPUT_H
#define ARXHOST_ARCHIVEINPUT_H

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "InputFile.h"
#include "zip/ARXZipInputStream.h"

class ArchiveInput
{
public:
    using Entry = ARXZipInputStream::zipEntry;

    // Reads a regular file from its beginning, also as standard input. Anything else, such as a pipe, is read
    // into memory first.
    explicit ArchiveInput(std::string const& path);
    ~ArchiveInput();

    ArchiveInput(ArchiveInput const&) = delete;
    ArchiveInput& operator=(ArchiveInput const&) = delete;

    // Goes to the first entry, then to the next; false at the end. Raises if the walk ends before all entries
    // of the directory were seen.
    bool toNext();
    // Describes the current entry. Raises for a name that is too long for the library.
    Entry readEntry();
    // Gives the contents of the current entry to sink, and raises after that unless their size and checksum
    // are those of entry.
    void copyEntry(Entry const& entry, Sink const& sink);

    // Calls visit with each entry. What it raises is printed at once, after the entry's name, and the walk
    // goes on; raises in the end if anything was printed. Returns the number of entries.
    std::uint64_t visitEntries(std::function<void(Entry const&)> const& visit);

    // As errors name the archive.
    std::string const& getName() const { return m_name; }
    // Whether path is the file that the archive is read from.
    bool isSameFile(std::string const& path) const;

private:
    void open(std::string const& path);

    struct Close
    {
        void operator()(std::FILE* file) const;
    };

    std::string m_name;
    std::string m_bytes;  // of an archive that came through a pipe
    std::unique_ptr<std::FILE, Close> m_file;
    std::uint64_t m_count;  // of entries in the directory
    std::uint64_t m_seen = 0;
    std::unique_ptr<ARXZipInputStream> m_stream;  // null for an archive without entries
};

// The local time of an entry; nothing where the archive holds no date that exists.
std::optional<std::tm> dateOf(ArchiveInput::Entry const& entry);

// The path of an entry below the folder that it is extracted to: without "." and "..", "/" as separator.
// Raises for an empty name, and for one that leads elsewhere: one with a drive letter, an absolute one, or
// one whose ".." climb out.
std::string relativePath(std::string const& entryName);

#endif
