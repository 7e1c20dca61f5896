// File times under the names of the Windows interface. Any thread may call; a handle serves one at a time.
//
// A FILETIME counts steps of 100 ns since 1601-01-01, in UTC unless the name of an operation says local time.
// Operations return 1, or 0 on failure.

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
    // Opens an existing file, which other processes may open too, whatever share says. Both / and \ separate.
    // Returns INVALID_HANDLE_VALUE on failure, and unless disposition is OPEN_EXISTING and flags is 0.
    OS_FILETIME_API HANDLE CreateFileA(char const* path, DWORD access, DWORD share, void* security,
                                       DWORD disposition, DWORD flags, HANDLE templateFile);
    OS_FILETIME_API BOOL CloseHandle(HANDLE file);

    // Each of the three times may be null. The creation time is that of the last change of the file's status.
    OS_FILETIME_API BOOL GetFileTime(HANDLE file, FILETIME* creation, FILETIME* lastAccess,
                                     FILETIME* lastWrite);
    // A time that is null stays, and so does the creation time, which the system can't set. A last access
    // that equals what GetFileTime returns stays to the nanosecond.
    OS_FILETIME_API BOOL SetFileTime(HANDLE file, FILETIME const* creation, FILETIME const* lastAccess,
                                     FILETIME const* lastWrite);

    // Converts a date and a time as FAT and zip store them (APPNOTE, 4.4.6). An impossible date, such as 30
    // February, fails.
    OS_FILETIME_API BOOL DosDateTimeToFileTime(WORD date, WORD time, FILETIME* result);
    // Converts with the daylight saving time of that date; an hour that a clock change skips counts as the
    // next.
    OS_FILETIME_API BOOL LocalFileTimeToFileTime(FILETIME const* local, FILETIME* utc);
}

#endif
