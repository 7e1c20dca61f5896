#include "os/OsFileTime.h"

#include <cerrno>
#include <cstring>
#include <ctime>

#include <sys/stat.h>

#include "os/OsFile.h"
#include "os/OsFileName.h"

namespace
{
std::int64_t constexpr s_stepsPerSecond = 10000000;
std::int64_t constexpr s_nanosecondsPerStep = 100;
std::int64_t constexpr s_secondsFrom1601To1970 = 11644473600;

FILETIME toFileTime(timespec const& time)
{
    std::int64_t const steps =
        (time.tv_sec + s_secondsFrom1601To1970) * s_stepsPerSecond + time.tv_nsec / s_nanosecondsPerStep;
    return {static_cast<DWORD>(steps & 0xFFFFFFFF), static_cast<DWORD>(steps >> 32)};
}

timespec toTimespec(FILETIME const& time)
{
    std::int64_t const steps = static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    timespec result{};
    result.tv_sec = static_cast<std::time_t>(steps / s_stepsPerSecond - s_secondsFrom1601To1970);
    result.tv_nsec = static_cast<long>(steps % s_stepsPerSecond * s_nanosecondsPerStep);
    return result;
}

// A handle is the descriptor itself, so that nothing has to be allocated.
int descriptorOf(HANDLE file)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(file));
}

void give(timespec const& time, FILETIME* target)
{
    if (target)
        *target = toFileTime(time);
}

timespec constexpr s_omitted = {0, UTIME_OMIT};
}  // namespace

HANDLE CreateFileA(char const* path, DWORD access, DWORD, void*, DWORD disposition, DWORD flags, HANDLE)
{
    if (!path || disposition != OPEN_EXISTING || flags != 0)
    {
        errno = EINVAL;
        return INVALID_HANDLE_VALUE;
    }
    OsFile file;
    file.open(OsFileName::forWriting(path).c_str(),
              ((access & GENERIC_READ) != 0 ? OsFile::s_read : 0) |
                  ((access & GENERIC_WRITE) != 0 ? OsFile::s_write : 0));
    return reinterpret_cast<HANDLE>(std::intptr_t{file.release()});
}

BOOL CloseHandle(HANDLE file)
{
    return OsFile(descriptorOf(file)).close();
}

BOOL GetFileTime(HANDLE file, FILETIME* creation, FILETIME* lastAccess, FILETIME* lastWrite)
{
    struct stat status;
    if (::fstat(descriptorOf(file), &status) != 0)
        return 0;
    give(status.st_ctim, creation);
    give(status.st_atim, lastAccess);
    give(status.st_mtim, lastWrite);
    return 1;
}

BOOL SetFileTime(HANDLE file, FILETIME const*, FILETIME const* lastAccess, FILETIME const* lastWrite)
{
    FILETIME current;
    if (GetFileTime(file, nullptr, &current, nullptr) == 0)
        return 0;
    // A FILETIME is coarser than the file's own time; writing it back would lose the rest.
    bool const keepsAccess = !lastAccess || std::memcmp(lastAccess, &current, sizeof current) == 0;
    timespec const times[] = {keepsAccess ? s_omitted : toTimespec(*lastAccess),
                              lastWrite ? toTimespec(*lastWrite) : s_omitted};
    return ::futimens(descriptorOf(file), times) == 0;
}

BOOL DosDateTimeToFileTime(WORD date, WORD time, FILETIME* result)
{
    std::tm fields{};
    fields.tm_year = (date >> 9) + 80;
    fields.tm_mon = (date >> 5 & 0xF) - 1;
    fields.tm_mday = date & 0x1F;
    fields.tm_hour = time >> 11;
    fields.tm_min = time >> 5 & 0x3F;
    fields.tm_sec = (time & 0x1F) * 2;

    std::tm normal = fields;
    timespec const moment = {::timegm(&normal), 0};
    // timegm changes the fields of a date that doesn't exist.
    bool const isPossible = normal.tm_mon == fields.tm_mon && normal.tm_mday == fields.tm_mday &&
                            normal.tm_hour == fields.tm_hour && normal.tm_min == fields.tm_min &&
                            normal.tm_sec == fields.tm_sec;
    if (isPossible)
        *result = toFileTime(moment);
    return isPossible;
}

BOOL LocalFileTimeToFileTime(FILETIME const* local, FILETIME* utc)
{
    timespec moment = toTimespec(*local);
    std::tm fields{};
    if (!::gmtime_r(&moment.tv_sec, &fields))
        return 0;
    fields.tm_isdst = -1;  // to be found from the date
    fields.tm_wday = -1;
    ::tzset();  // mktime alone need not look at a TZ that has changed
    moment.tv_sec = std::mktime(&fields);
    if (fields.tm_wday < 0)  // set by a mktime that works; its -1 may be a time as well
        return 0;
    *utc = toFileTime(moment);
    return 1;
}
