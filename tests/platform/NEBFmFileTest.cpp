#include "NEBCore/NEBFmFile.h"

#include <cerrno>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/TemporaryFolder.h"

namespace
{
int constexpr s_create = NEBFmFile::s_createOrTruncate;
int constexpr s_read = NEBFmFile::s_readExisting;

TEST(NEBFmFile, TruncatesUnderEitherSeparator)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "a") << "longer than before";
    NEBFmFile file;
    ASSERT_EQ(1, file.open(folder.path() + "\\a", s_create, 0));
    EXPECT_EQ(3, file.write("xyz", 3));
    EXPECT_EQ("xyz", readAll(folder / "a"));
    EXPECT_TRUE(file.close() == 1 && file.close() == 1);
}

TEST(NEBFmFile, ReadsNoFurtherThanTheSizeAtOpening)
{
    TemporaryFolder const folder;
    std::ofstream growing(folder / "a");
    growing << "12345" << std::flush;
    NEBFmFile file;
    ASSERT_EQ(1, file.open(folder / "a", s_read, 0));
    growing << "67890" << std::flush;
    char buffer[10];
    EXPECT_EQ(2, file.read(buffer, 2));
    EXPECT_EQ(3, file.read(buffer, sizeof buffer));
    EXPECT_EQ(0, file.read(buffer, sizeof buffer));
    ASSERT_EQ(1, file.open("/dev/zero", s_read, 0));
    EXPECT_EQ(10, file.read(buffer, sizeof buffer));
}

struct RefusalRow
{
    char const* m_path;
    int m_mode;
    int m_reason;
};

TEST(NEBFmFile, KeepsNoDescriptorOfWhatItRefuses)
{
    RefusalRow const rows[] = {
        {"/", s_read, EISDIR}, {"/x", s_read, ENOENT}, {"/x/y", s_create, ENOENT}, {"/", 1, EINVAL}};
    int const next = dup(0);
    ::close(next);
    NEBFmFile file;
    for (RefusalRow const& row : rows)
    {
        SCOPED_TRACE(row.m_path);
        char byte = 0;
        EXPECT_EQ(0, file.open(row.m_path, row.m_mode, 0));
        EXPECT_EQ(row.m_reason, errno);
        EXPECT_TRUE(file.read(&byte, 1) == -1 && file.write(&byte, 1) == 0);
    }
    ASSERT_EQ(1, file.open("/dev/null", s_read, 0));
    EXPECT_EQ(FD_CLOEXEC, fcntl(next, F_GETFD)) << "a descriptor was lost or is inherited";
}
}  // namespace
