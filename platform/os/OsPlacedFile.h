// A file that is written beside its target and takes the target's name only when it is complete.
//
// The temporary file has a name of 21 bytes that nobody can guess, ".arx-" and 16 hexadecimal digits.
// Destruction removes it unless it has taken its name; a process that is killed leaves it. Failures are
// returned, with the reason in errno and a text in getFailure; only std::bad_alloc is raised. The first
// failure is final: all later operations fail for the same reason. One object serves one thread at a time,
// and only the process that made it: a forked child neither writes, places nor removes the file.
//
// Example:
//     OsPlacedFile file;
//     if (!file.create("settings.xml", 0666) || file.write("<settings/>", 11) != 11 || !file.replace())
//         throw file.getFailure();

#ifndef OS_OSPLACEDFILE_H
#define OS_OSPLACEDFILE_H

#include <string>

#include "os/OsFile.h"

class __attribute__((visibility("default"))) OsPlacedFile
{
public:
    OsPlacedFile();
    ~OsPlacedFile();

    OsPlacedFile(OsPlacedFile const&) = delete;
    OsPlacedFile& operator=(OsPlacedFile const&) = delete;

    // Once for each object. Both separators count in target, and its directory must be readable. Refuses a
    // target that exists and is not a regular file; a symbolic link is none. The new file takes the
    // permissions of the file that it replaces, but only those in mode if that belongs to another user.
    // Without one it takes mode: as it is if it names the owner alone, less the umask if not.
    bool create(std::string const& target, unsigned mode);

    // The temporary file, for those that write by name. They may truncate it or put another in its place.
    std::string const& getPath() const { return m_path; }
    // Returns the number of bytes written: size, or fewer on failure.
    std::size_t write(void const* data, std::size_t size);

    // Both bring the file to the disk, give it its name and bring that to the disk. replace takes the place
    // of a file of that name; offer leaves such a file as it is and succeeds. After a failure the name may
    // have been given all the same.
    bool replace();
    bool offer();
    // As replace, but waits for no disk: for many files, after which the caller synchronises the file system.
    bool replaceUnsynced();

    // Says what failed and why: "file NAME can't be created: No such file or directory". Empty if nothing
    // has.
    std::string getFailure() const;

private:
    bool createTemporary(unsigned mode, bool isExact);
    bool isUsable();
    bool complete();
    bool takeName();
    bool remove();
    bool syncDirectory();
    bool fail(char const* what);

    std::string m_target;
    std::string m_name;           // of the target in its directory
    std::string m_path;           // of the temporary file
    std::string m_temporaryName;  // in the same directory; empty while no file has it
    OsFile m_directory;
    OsFile m_file;
    int m_process;          // that created the file
    char const* m_failure;  // what failed; null if nothing has
    int m_error;            // its reason
};

#endif
