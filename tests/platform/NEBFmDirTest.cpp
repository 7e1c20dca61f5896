#include "NEBCore/NEBFmDir.h"

#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TemporaryFolder.h"
#include "support/Words.h"

namespace
{
int constexpr s_file = 0x8000;
int constexpr s_directory = 0x4000;

TEST(NEBFmDir, SplitsBehindTheLastSeparatorAlsoInPlace)
{
    // Path, directory, file.
    for (Words const& row : table("- - -, x - x, /x / x, \\x \\ x, a/ a -, a/b\\c a/b c, a//b a/ b, // / -"))
    {
        std::string directory = row[0], file = row[0];
        NEBFmDir::splitPath(directory, &directory, nullptr);
        NEBFmDir::splitPath(file, nullptr, &file);
        EXPECT_EQ(row, (Words{row[0], directory, file}));
    }
}

TEST(NEBFmDir, MakesDirectoriesThroughBothSeparators)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    std::ofstream("file");
    auto rows = table("- ., a a, a a, b\\c//d\\ b/c/d, e/../f/./g f/g, file, file/x, /proc/x/y");
    rows.push_back({folder / "h\\i", "h/i"});
    rows.push_back({std::string(5000, '/') + std::string(300, 'x')});
    for (Words const& row : rows)
    {
        EXPECT_EQ(row.size() == 2, NEBFmDir::createRecursiveDir(row[0])) << row[0];
        EXPECT_EQ(1, NEBFmDir::exists(row.size() == 2 ? row[1].c_str() : ".", s_directory)) << row[0];
    }
}

TEST(NEBFmDir, KnowsTypesAndListsFilesAndRealDirectoriesSortedByByte)
{
    TemporaryFolder const folder;
    for (char const* name : {"b", "a", "B", "\xC3\xA4", "a\\b"})
        std::ofstream(folder / name);
    for (char const* name : {"z", "D", ".hidden"})
        std::filesystem::create_directory(folder / name);
    for (char const* target : {"a", "z", "nowhere", "b/x", "link-l"})
        std::filesystem::create_symlink(target, folder / (std::string("link-") + target[0]));
    ASSERT_EQ(0, mknod((folder / "socket").c_str(), S_IFSOCK | 0600, 0));

    // Files, directories, neither.
    auto const rows = table("a a\\b link-a .\\b, . .. z link-z, socket link-n a/b b/x");
    for (std::size_t row = 0; row < 3; ++row)
        for (std::string const& name : rows.at(row))
        {
            EXPECT_EQ(row == 0, NEBFmDir::exists((folder / name).c_str(), s_file)) << name;
            EXPECT_EQ(row == 1, NEBFmDir::exists((folder / name).c_str(), s_directory)) << name;
        }
    EXPECT_EQ(0, NEBFmDir::exists(nullptr, s_file));

    Words files{"old"}, dirs{"old"};
    EXPECT_EQ(1, NEBFmDir::readDir(folder.path().c_str(), &files, nullptr, &dirs, nullptr));
    EXPECT_EQ(table("B a a\\b b link-a \xC3\xA4, .hidden D z"), (std::vector<Words>{files, dirs}));
    EXPECT_EQ(1, NEBFmDir::readDir(folder.path().c_str(), nullptr, nullptr, nullptr, nullptr));
    for (char const* name : {static_cast<char const*>(nullptr), "/nowhere"})
    {
        dirs = files = {"old"};
        EXPECT_EQ(0, NEBFmDir::readDir(name, &files, nullptr, &dirs, nullptr));
        EXPECT_TRUE(files.empty() && dirs.empty());
    }
}

TEST(NEBFmDir, ResolvesPathsThatExistOnlyInPart)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    std::filesystem::create_directories("a/b");
    std::filesystem::create_symlink("a/b", "link");
    std::filesystem::create_symlink("loop", "loop");
    // Paths, and what they are below the current directory.
    auto rows = table(
        ". -, link\\x /a/b/x, link/../y/ /a/y, no/./z/../y/ /no/y, a//b/ /a/b, loop/x/../y /loop/x/../y");
    for (Words& row : rows)
        row[1].insert(0, folder.path());
    rows.insert(rows.end(), {{"", ""}, {"//", "/"}});
    for (Words const& row : rows)
    {
        std::string path = row[0];
        NEBFmDir::resolveEffectivePath(path);
        EXPECT_EQ(row, (Words{row[0], path}));
    }
    std::filesystem::remove_all(folder.path());
    std::string path = "x.zip";
    NEBFmDir::resolveEffectivePath(path);
    EXPECT_EQ("./x.zip", path) << "without a current directory";
}
}  // namespace
