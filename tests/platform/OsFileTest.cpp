#undef _FORTIFY_SOURCE  // brings an inline read of its own under clang

#include "os/OsPlacedFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Rows.h"
#include "support/TemporaryFolder.h"

namespace
{
// The system calls below stand before those of the C library. While a Calls object lives, it records their
// names in order. The m_failing-th call of the name m_name fails once with m_error, which is 0 for a call
// that does nothing and returns 0.
struct Calls
{
    Calls() { s_active = this; }
    ~Calls() { s_active = nullptr; }
    Calls(Calls const&) = delete;

    // What the call returns if it shall not be made.
    bool fails(char const* name)
    {
        m_made.push_back(name);
        errno = m_error;
        return m_name == name && --m_failing == 0;
    }
    long result() const { return m_error == 0 ? 0 : -1; }

    std::vector<std::string> m_made;
    std::string m_name;
    int m_failing = 1;
    int m_error = 0;
    unsigned m_createdMode = 0;  // of the last openat
    static Calls* s_active;
};
Calls* Calls::s_active = nullptr;

template <class... Arguments>
long pass(char const* name, long number, Arguments... arguments)
{
    if (Calls::s_active && Calls::s_active->fails(name))
        return Calls::s_active->result();
    return ::syscall(number, arguments...);
}
}  // namespace

#pragma GCC visibility push(default)
extern "C"
{
    int openat(int directory, char const* path, int flags, ...)
    {
        std::va_list list;
        va_start(list, flags);
        auto const mode = va_arg(list, mode_t);
        va_end(list);
        if (Calls::s_active)
            Calls::s_active->m_createdMode = mode;
        return static_cast<int>(pass("openat", SYS_openat, directory, path, flags, mode));
    }
    ssize_t read(int file, void* data, size_t size)
    {
        return pass("read", SYS_read, file, data, std::min<size_t>(size, 3));
    }
    ssize_t write(int file, void const* data, size_t size)
    {
        return pass("write", SYS_write, file, data, std::min<size_t>(size, 3));
    }
    int fchmod(int file, mode_t mode)
    {
        return static_cast<int>(pass("fchmod", SYS_fchmod, file, mode));
    }
    int fsync(int file)
    {
        return static_cast<int>(pass("fsync", SYS_fsync, file));
    }
    int close(int file)
    {
        bool const fails = Calls::s_active && Calls::s_active->fails("close");
        long const result = ::syscall(SYS_close, file);  // closes even where it fails
        errno = fails ? Calls::s_active->m_error : errno;
        return fails ? -1 : static_cast<int>(result);
    }
    int renameat(int from, char const* old, int to, char const* name) noexcept
    {
        return static_cast<int>(pass("renameat", SYS_renameat2, from, old, to, name, 0));
    }
    int linkat(int from, char const* old, int to, char const* name, int flags) noexcept
    {
        return static_cast<int>(pass("linkat", SYS_linkat, from, old, to, name, flags));
    }
    int unlinkat(int directory, char const* name, int flags) noexcept
    {
        return static_cast<int>(pass("unlinkat", SYS_unlinkat, directory, name, flags));
    }
    ssize_t getrandom(void* target, size_t size, unsigned flags)
    {
        return pass("getrandom", SYS_getrandom, target, size, flags);
    }
}
#pragma GCC visibility pop

namespace
{
unsigned permissionsOf(std::string const& path)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

class OsPlacedFileTest : public testing::Test
{
protected:
    ~OsPlacedFileTest() override { ::umask(m_umask); }

    void writeOld(unsigned permissions)
    {
        OsFile file;
        ASSERT_TRUE(file.open(m_target.c_str(), OsFile::s_write | OsFile::s_create | OsFile::s_exclusive));
        ASSERT_TRUE(file.setPermissions(permissions) && file.write("old", 3) == 3);
    }
    bool isAlone() const
    {
        std::filesystem::directory_iterator const entries(m_folder.path());
        return std::distance(begin(entries), end(entries)) == 1;
    }

    TemporaryFolder m_folder;
    std::string m_target = m_folder / "target";
    mode_t m_umask = ::umask(022);
};

bool place(OsPlacedFile& file, std::string const& target, bool (OsPlacedFile::*end)(), unsigned mode = 0666)
{
    return file.create(target, mode) && file.write("new text", 8) == 8 && (file.*end)();
}

struct FailureRow
{
    char const* m_name;
    bool (OsPlacedFile::*m_end)();
    char const* m_call;
    int m_failing;  // the n-th call of that name
    char const* m_text;
    char const* m_content;  // of the target afterwards
};
using Failing = OsPlacedFile;
FailureRow const s_failures[] = {
    {"Directory", &Failing::replace, "openat", 1, "can't be created", "old"},
    {"Creation", &Failing::replace, "openat", 2, "can't be created", "old"},
    {"Permissions", &Failing::replace, "fchmod", 1, "can't be created", "old"},
    {"Write", &Failing::replace, "write", 2, "can't be written", "old"},
    {"Sync", &Failing::replace, "fsync", 1, "can't be synchronised with the disk", "old"},
    {"Close", &Failing::replace, "close", 1, "can't be closed", "old"},
    {"Rename", &Failing::replace, "renameat", 1, "can't take its name", "old"},
    {"SyncOfDirectory", &Failing::replace, "fsync", 2,
     "is in a directory that can't be synchronised with the disk", "new text"},
    {"Link", &Failing::offer, "linkat", 1, "can't take its name", "old"},
    {"Unlink", &Failing::offer, "unlinkat", 1, "keeps a second name, which can't be removed", "old"},
    {"SyncOfDirectoryOfOffer", &Failing::offer, "fsync", 2,
     "is in a directory that can't be synchronised with the disk", "old"},
};

class OsPlacedFileFailure : public OsPlacedFileTest, public testing::WithParamInterface<FailureRow>
{
};

TEST_P(OsPlacedFileFailure, IsToldAndFinal)
{
    FailureRow const& row = GetParam();
    writeOld(0644);
    {
        OsPlacedFile file;
        Calls calls;
        calls.m_name = row.m_call;
        calls.m_failing = row.m_failing;
        calls.m_error = ENOSPC;
        EXPECT_FALSE(place(file, m_target, row.m_end));
        EXPECT_EQ(ENOSPC, errno);
        EXPECT_EQ("file " + m_target + " " + row.m_text + ": No space left on device", file.getFailure());
        EXPECT_EQ(0u, file.write("x", 1));
        EXPECT_FALSE(file.replace());
        EXPECT_EQ(ENOSPC, errno);
    }
    EXPECT_EQ(row.m_content, readAll(m_target));
    EXPECT_TRUE(isAlone());
}
INSTANTIATE_TEST_SUITE_P(Steps, OsPlacedFileFailure, testing::ValuesIn(s_failures), RowName());

TEST_F(OsPlacedFileTest, SurvivesASignalInEachCall)
{
    for (auto const end : {&OsPlacedFile::replace, &OsPlacedFile::offer})
        for (char const* const call :
             {"openat", "write", "fchmod", "fsync", "close", "renameat", "linkat", "unlinkat", "getrandom"})
        {
            SCOPED_TRACE(call);
            OsPlacedFile file;
            Calls calls;
            calls.m_name = call;
            calls.m_error = EINTR;
            EXPECT_TRUE(place(file, m_target, end)) << file.getFailure();
            EXPECT_LE(std::count(calls.m_made.begin(), calls.m_made.end(), "close"), 2);
        }
    EXPECT_EQ("new text", readAll(m_target));
    EXPECT_TRUE(isAlone());
}

TEST_F(OsPlacedFileTest, BringsTheFileToTheDiskBeforeItsName)
{
    Calls calls;
    OsPlacedFile replaced;
    ASSERT_TRUE(place(replaced, m_target, &OsPlacedFile::replace));
    EXPECT_THAT(calls.m_made, testing::ElementsAre("openat", "getrandom", "openat", "write", "write", "write",
                                                   "fsync", "close", "renameat", "fsync"));
    calls.m_made.clear();
    OsPlacedFile offered;
    ASSERT_TRUE(place(offered, m_target, &OsPlacedFile::offer));
    EXPECT_THAT(calls.m_made,
                testing::ElementsAre("openat", "getrandom", "openat", "fchmod", "write", "write", "write",
                                     "fsync", "close", "linkat", "unlinkat", "fsync"));
}

struct PermissionRow
{
    char const* m_name;
    unsigned m_umask;
    unsigned m_old;  // of the file that is replaced; 0 for none
    unsigned m_mode;
    unsigned m_expected;
};
PermissionRow const s_permissions[] = {
    {"NewFileFollowsTheUmask", 0027, 0, 0666, 0640},     {"NewPrivateFileIsExact", 0377, 0, 0600, 0600},
    {"ReplacedFileKeepsItsOwn", 0077, 0644, 0600, 0644}, {"ReplacedSecretStaysSecret", 0, 0400, 0666, 0400},
    {"SetUserIdIsDropped", 0, 04755, 0666, 0755},
};

class OsPlacedFilePermissions : public OsPlacedFileTest, public testing::WithParamInterface<PermissionRow>
{
};

TEST_P(OsPlacedFilePermissions, AreThoseOfTheReplacedFileOrTheGivenOnes)
{
    PermissionRow const& row = GetParam();
    if (row.m_old != 0)
        writeOld(row.m_old);
    ::umask(row.m_umask);
    OsPlacedFile file;
    Calls calls;
    ASSERT_TRUE(file.create(m_target, row.m_mode)) << file.getFailure();
    EXPECT_EQ(0u, calls.m_createdMode & ~row.m_umask & ~row.m_expected) << "wider at first";
    EXPECT_EQ(row.m_expected, permissionsOf(file.getPath()));
    ASSERT_TRUE(file.replace()) << file.getFailure();
    EXPECT_EQ(row.m_expected, permissionsOf(m_target));
}
INSTANTIATE_TEST_SUITE_P(Modes, OsPlacedFilePermissions, testing::ValuesIn(s_permissions), RowName());

TEST_F(OsPlacedFileTest, RefusesWhatIsNoRegularFile)
{
    ASSERT_EQ(0, ::symlink("nothing", (m_folder / "link").c_str()));
    ASSERT_EQ(0, ::mkfifo((m_folder / "pipe").c_str(), 0600));
    for (char const* const name : {"link", "pipe", ".", "", "..\\"})
    {
        SCOPED_TRACE(name);
        OsPlacedFile file;
        EXPECT_FALSE(file.create(m_folder / name, 0666));
        EXPECT_THAT(file.getFailure(), testing::HasSubstr(" is not a regular file: "));
    }
}

TEST_F(OsPlacedFileTest, TakesTheLongestName)
{
    OsPlacedFile file;
    EXPECT_TRUE(place(file, m_folder / std::string(255, 'n'), &OsPlacedFile::replace)) << file.getFailure();
}

TEST_F(OsPlacedFileTest, OfferLeavesTheFileThatIsThere)
{
    writeOld(0644);
    OsPlacedFile file;
    EXPECT_TRUE(place(file, m_target, &OsPlacedFile::offer));
    EXPECT_EQ("old", readAll(m_target));
    EXPECT_TRUE(isAlone());
}

TEST_F(OsPlacedFileTest, ForkedChildNeitherPlacesNorRemoves)
{
    OsPlacedFile file;
    ASSERT_TRUE(file.create(m_target, 0666));
    pid_t const child = ::fork();
    if (child == 0)
    {
        bool const isRefused = file.write("x", 1) == 0 && !file.replace() && !file.offer();
        file.~OsPlacedFile();
        ::_exit(isRefused ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
    EXPECT_TRUE(file.replace()) << file.getFailure();
    EXPECT_EQ("", readAll(m_target));
}

TEST_F(OsPlacedFileTest, WriteThatTakesNothingFails)
{
    OsFile file;
    ASSERT_TRUE(file.open(m_target.c_str(), OsFile::s_write | OsFile::s_create));
    Calls calls;
    calls.m_name = "write";
    calls.m_failing = 2;
    EXPECT_EQ(3u, file.write("12345", 5));
    EXPECT_EQ(EIO, errno);
}

TEST_F(OsPlacedFileTest, ReadGoesOnUntilTheEnd)
{
    writeOld(0644);
    OsFile file;
    ASSERT_TRUE(file.open(m_target.c_str(), OsFile::s_read | OsFile::s_write));
    ASSERT_EQ(5u, file.write("fresh", 5));
    ASSERT_TRUE(file.open(m_target.c_str(), OsFile::s_read));
    Calls calls;
    calls.m_name = "read";
    calls.m_error = EINTR;
    char data[9];
    EXPECT_EQ(5, file.read(data, sizeof data));
    calls.m_failing = 1;
    calls.m_error = EIO;
    EXPECT_EQ(-1, file.read(data, sizeof data));
    EXPECT_TRUE(file.close() && file.close());
}
}  // namespace
