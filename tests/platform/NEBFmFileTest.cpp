#include "NEBCore/NEBFmFile.h"

#include <cerrno>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/TemporaryFolder.h"

namespace
{
int constexpr s_read = NEBFmFile::s_readExisting;

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

TEST(NEBFmFile, KeepsNoDescriptorOfWhatItRefuses)
{
    int const next = dup(0);
    ::close(next);
    NEBFmFile file;
    EXPECT_EQ(0, file.open("/", s_read, 0));
    EXPECT_EQ(EISDIR, errno);
    EXPECT_EQ(-1, fcntl(next, F_GETFD));
    EXPECT_EQ(0, file.open("/dev/null", 1, 0));
    EXPECT_EQ(EINVAL, errno);
    ASSERT_EQ(1, file.open("/dev/null", s_read, 0));
    EXPECT_EQ(FD_CLOEXEC, fcntl(next, F_GETFD));
}
}  // namespace
