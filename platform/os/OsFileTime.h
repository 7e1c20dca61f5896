// File times under the names of the Windows interface, over POSIX. Any number of threads may call; a handle
// serves one at a time.
//
// A FILETIME counts steps of 100 ns since 1601-01-01; in UTC where the name of an operation doesn't say local
// time. Operations answer 1, or 0 on failure.

#ifndef OS_OSFILETIME_H
#define OS_OSFILETIME_H

#include <cstdint>

#define OS_FILETIME_API __attribute__((visibility("default")))

using BOOL = std::int32_t;  // 0 for failure
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using HANDLE = void*;

struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

DWORD constexpr GENERIC_READ = 0x80000000;
DWORD constexpr GENERIC_WRITE = 0x40000000;
DWORD constexpr OPEN_EXISTING = 3;
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(std::intptr_t{-1}))

extern "C"
{
    // Opens an existing file; INVALID_HANDLE_VALUE on failure, and for anything but OPEN_EXISTING without
    // attributes. "\" separates like "/". Nothing keeps other processes out: the system has no such lock,
    // whatever share says.
    OS_FILETIME_API HANDLE CreateFileA(char const* path, DWORD access, DWORD share, void* security,
                                       DWORD disposition, DWORD flags, HANDLE templateFile);
    OS_FILETIME_API BOOL CloseHandle(HANDLE file);

    // Each out may be null. The last change of the file's status stands in for its creation.
    OS_FILETIME_API BOOL GetFileTime(HANDLE file, FILETIME* creation, FILETIME* lastAccess,
                                     FILETIME* lastWrite);
    // Each time may be null, and then stays. So does the creation time, which can't be set here. A last
    // access equal to the file's own, as GetFileTime gives it, stays to the nanosecond.
    OS_FILETIME_API BOOL SetFileTime(HANDLE file, FILETIME const* creation, FILETIME const* lastAccess,
                                     FILETIME const* lastWrite);

    // Takes a date and a time as FAT and zip store them. An impossible one, such as 30 February, fails.
    OS_FILETIME_API BOOL DosDateTimeToFileTime(WORD date, WORD time, FILETIME* result);
    // From local time to UTC, with the daylight saving of that date; an hour that a clock change skips counts
    // as the one behind it.
    OS_FILETIME_API BOOL LocalFileTimeToFileTime(FILETIME const* local, FILETIME* utc);
}

#endif
