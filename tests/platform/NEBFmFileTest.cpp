#include "NEBCore/NEBFmFile.h"

#include <cerrno>
#include <fstream>
#include <tuple>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/TemporaryFolder.h"

namespace
{
int constexpr s_write = 2;
int constexpr s_read = 3;

TEST(NEBFmFile, TruncatesWritesAtOnceUnderEitherSeparatorAndTellsAFullDisk)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "a") << "longer than before";
    NEBFmFile file;
    ASSERT_EQ(1, file.open(folder.path() + "\\a", s_write, 0));
    EXPECT_EQ(3, file.write("xyz", 3));
    EXPECT_EQ(0, file.write("", 0));
    EXPECT_EQ("xyz", readAll(folder / "a"));
    EXPECT_TRUE(file.close() == 1 && file.close() == 1);
    ASSERT_EQ(1, file.open("/dev/full", s_write, 0));
    EXPECT_EQ(0, file.write("x", 1));
    EXPECT_EQ(ENOSPC, errno);
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
    for (std::size_t const wanted : {2u, 3u, 0u})
        EXPECT_EQ(wanted, file.read(buffer, wanted == 2 ? 2 : sizeof buffer));
    ASSERT_EQ(1, file.open("/dev/zero", s_read, 0));
    EXPECT_EQ(10, file.read(buffer, sizeof buffer));
}

TEST(NEBFmFile, RefusesWhatIsNoFileAndKeepsNoDescriptor)
{
    TemporaryFolder const folder;
    int const next = dup(0);
    ::close(next);
    NEBFmFile file;
    std::tuple<char const*, int, int> const rows[] = {
        {"", s_read, EISDIR}, {"x", s_read, ENOENT}, {"x/y", s_write, ENOENT}, {"", 1, EINVAL}};
    for (auto const& [name, mode, reason] : rows)
    {
        char byte = 0;
        EXPECT_EQ(0, file.open(folder / name, mode, 0)) << name;
        EXPECT_EQ(reason, errno) << name;
        EXPECT_TRUE(file.read(&byte, 1) == -1 && file.write(&byte, 1) == 0);
    }
    ASSERT_EQ(1, file.open("/dev/null", s_read, 0));
    EXPECT_EQ(FD_CLOEXEC, fcntl(next, F_GETFD)) << "a descriptor was lost or is inherited";
}
}  // namespace
