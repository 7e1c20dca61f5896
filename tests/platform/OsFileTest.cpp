#undef _FORTIFY_SOURCE  // brings an inline read of its own under clang

#include "os/OsPlacedFile.h"

#include <cerrno>
#include <cstdarg>
#include <optional>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace
{
// The system calls below replace those of the C library and are recorded. One of them fails: the
// m_failing-th of the name m_name.
struct Calls
{
    std::vector<std::string> m_made = {};
    std::string m_name = "";
    int m_failing = 1;
    int m_error = ENOSPC;
    unsigned m_createdMode = 0;  // of the last openat
} s_calls;

bool fails(char const* name)
{
    s_calls.m_made.push_back(name);
    errno = s_calls.m_error;
    return s_calls.m_name == name && --s_calls.m_failing == 0;
}

template <class... Arguments>
int pass(char const* name, long number, Arguments... arguments)
{
    return fails(name) ? -1 : static_cast<int>(::syscall(number, arguments...));
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
        s_calls.m_createdMode = mode;
        return pass("openat", SYS_openat, directory, path, flags, mode);
    }
    ssize_t getrandom(void* target, std::size_t size, unsigned flags)
    {
        return pass("getrandom", SYS_getrandom, target, size, flags);
    }
    int fsync(int file)
    {
        return pass("fsync", SYS_fsync, file);
    }
    int close(int file)
    {
        ::syscall(SYS_close, file);  // even where it fails
        return fails("close") ? -1 : 0;
    }
    int renameat(int from, char const* old, int to, char const* name) noexcept
    {
        return pass("renameat", SYS_renameat2, from, old, to, name, 0);
    }
    int linkat(int from, char const* old, int to, char const* name, int flags) noexcept
    {
        return pass("linkat", SYS_linkat, from, old, to, name, flags);
    }
    int unlinkat(int directory, char const* name, int flags) noexcept
    {
        return pass("unlinkat", SYS_unlinkat, directory, name, flags);
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
        std::ofstream(m_target) << "old";
        ASSERT_EQ(0, ::chmod(m_target.c_str(), permissions));
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

bool place(OsPlacedFile& file, std::string const& target, bool (OsPlacedFile::*end)())
{
    return file.create(target, 0666) && file.write("new text", 8) == 8 && (file.*end)();
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
    {"Sync", &Failing::replace, "fsync", 1, "can't be synchronised with the disk", "old"},
    {"Close", &Failing::replace, "close", 1, "can't be closed", "old"},
    {"Rename", &Failing::replace, "renameat", 1, "can't take its name", "old"},
    {"SyncOfDirectory", &Failing::replace, "fsync", 2,
     "is in a directory that can't be synchronised with the disk", "new text"},
    {"Link", &Failing::offer, "linkat", 1, "can't take its name", "old"},
    {"Unlink", &Failing::offer, "unlinkat", 1, "keeps a second name, which can't be removed", "old"},
};

TEST_F(OsPlacedFileTest, EachFailureIsToldForGood)
{
    for (FailureRow const& row : s_failures)
    {
        SCOPED_TRACE(row.m_name);
        writeOld(0644);
        std::optional<OsPlacedFile> file(std::in_place);
        s_calls = {{}, row.m_call, row.m_failing};
        EXPECT_FALSE(place(*file, m_target, row.m_end));
        EXPECT_EQ("file " + m_target + " " + row.m_text + ": No space left on device", file->getFailure());
        EXPECT_TRUE(file->write("x", 1) == 0 && !file->replace() && errno == ENOSPC);
        file.reset();
        EXPECT_EQ(row.m_content, readAll(m_target));
        EXPECT_TRUE(isAlone());
    }
}

TEST_F(OsPlacedFileTest, BringsTheFileToTheDiskBeforeItsName)
{
    s_calls = {};
    OsPlacedFile replaced, offered;
    ASSERT_TRUE(place(replaced, m_target, &OsPlacedFile::replace));
    EXPECT_THAT(s_calls.m_made,
                testing::ElementsAre("openat", "getrandom", "openat", "fsync", "close", "renameat", "fsync"));
    writeOld(0644);
    s_calls = {};
    ASSERT_TRUE(place(offered, m_target, &OsPlacedFile::offer));
    EXPECT_THAT(s_calls.m_made, testing::ElementsAre("openat", "getrandom", "openat", "fsync", "close",
                                                     "linkat", "unlinkat", "fsync"));
    EXPECT_EQ("old", readAll(m_target));
    EXPECT_TRUE(isAlone());
}

TEST_F(OsPlacedFileTest, ReadsADeviceWhereGetrandomIsForbidden)
{
    s_calls = {{}, "getrandom", 1, ENOSYS};
    OsPlacedFile file;
    EXPECT_TRUE(place(file, m_target, &OsPlacedFile::replace)) << file.getFailure();
    EXPECT_EQ("new text", readAll(m_target));
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
    {"ReplacedFileKeepsItsOwn", 0077, 0644, 0666, 0644}, {"ReplacedSecretStaysSecret", 0, 0400, 0666, 0400},
    {"SetUserIdIsDropped", 0, 04755, 0666, 0755},
};

TEST_F(OsPlacedFileTest, PermissionsAreThoseOfTheReplacedFileOrTheGivenOnes)
{
    for (PermissionRow const& row : s_permissions)
    {
        SCOPED_TRACE(row.m_name);
        std::filesystem::remove(m_target);
        if (row.m_old != 0)
            writeOld(row.m_old);
        ::umask(row.m_umask);
        OsPlacedFile file;
        ASSERT_TRUE(file.create(m_target, row.m_mode)) << file.getFailure();
        EXPECT_EQ(0u, s_calls.m_createdMode & ~row.m_umask & ~row.m_expected) << "wider at first";
        EXPECT_EQ(row.m_expected, permissionsOf(file.getPath()));
        ASSERT_TRUE(file.replace()) << file.getFailure();
        EXPECT_EQ(row.m_expected, permissionsOf(m_target));
    }
}

TEST_F(OsPlacedFileTest, InterruptedCloseIsNotRepeated)
{
    OsFile file;
    ASSERT_TRUE(file.open("/dev/null", OsFile::s_read));
    s_calls = {{}, "close", 1, EINTR};
    EXPECT_TRUE(file.close() && file.close());
    EXPECT_THAT(s_calls.m_made, testing::ElementsAre("close"));
}
}  // namespace
