#include "NEBCore/NEBFmFile.h"

#include <cerrno>
#include <fstream>
#include <tuple>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "NEBCore/NEBFmDir.h"
#include "support/TemporaryFolder.h"

namespace
{
int constexpr s_write = 2;
int constexpr s_read = 3;

std::string readAll(std::string const& path)
{
    NEBFmFile file;
    std::string text(100, '\0');
    if (!file.open(path, s_read, 0))
        return "can't be opened";
    text.resize(static_cast<std::size_t>(file.read(text.data(), text.size())));
    return text;
}

TEST(NEBFmFile, TruncatesWritesAtOnceAndTellsAFullDisk)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "a") << "longer than before";
    NEBFmFile file;
    ASSERT_EQ(1, file.open(folder / "a", s_write, 0));
    EXPECT_EQ(3, file.write("xyz", 3));
    EXPECT_EQ(0, file.write("", 0));
    EXPECT_EQ("xyz", readAll(folder / "a"));
    EXPECT_EQ(1, file.close());
    EXPECT_EQ(1, file.close());
    ASSERT_EQ(1, file.open("/dev/full", s_write, 0));
    EXPECT_EQ(0, file.write("x", 1));
    EXPECT_EQ(ENOSPC, errno);
}

TEST(NEBFmFile, MakesFilesInTheFolderThatEitherSeparatorNames)
{
    TemporaryFolder const folder;
    NEBFmDir::createRecursiveDir(folder / "a");
    NEBFmFile file;
    ASSERT_EQ(1, file.open(folder / "a\\b", s_write, 0));
    EXPECT_EQ(1, file.write("x", 1));
    EXPECT_EQ("x", readAll(folder / "a/b"));
    EXPECT_EQ("x", readAll(folder / "a\\b"));
    std::ofstream(folder / "a\\b") << "literal";
    EXPECT_EQ("literal", readAll(folder / "a\\b"));
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

TEST(NEBFmFile, RefusesWhatIsNoFileAndKeepsNoDescriptor)
{
    TemporaryFolder const folder;
    int const next = dup(0);
    ::close(next);
    std::tuple<char const*, int, int> const rows[] = {{"", s_read, EISDIR},  {"", s_write, EISDIR},
                                                      {"x", s_read, ENOENT}, {"x/y", s_write, ENOENT},
                                                      {"", 1, EINVAL},       {"new/", s_write, EISDIR}};
    for (auto const& [name, mode, reason] : rows)
    {
        NEBFmFile file;
        EXPECT_EQ(0, file.open(folder / name, mode, 0)) << name;
        EXPECT_EQ(reason, errno) << name;
        char byte = 0;
        EXPECT_EQ(-1, file.read(&byte, 1));
        EXPECT_EQ(0, file.write(&byte, 1));
    }
    NEBFmFile file;
    ASSERT_EQ(1, file.open("/dev/null", s_read, 0));
    EXPECT_EQ(FD_CLOEXEC, fcntl(next, F_GETFD)) << "a descriptor was lost or is inherited";
}
}  // namespace
