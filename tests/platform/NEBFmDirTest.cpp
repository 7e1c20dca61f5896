#include "NEBCore/NEBFmDir.h"

#include <fstream>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "NEBCore/I18NString.h"
#include "support/TemporaryFolder.h"

namespace
{
int constexpr s_file = 0x8000;
int constexpr s_directory = 0x4000;

std::tuple<char const*, char const*, char const*> const s_splitCases[] = {
    {"", "", ""},    {"x", "", "x"},     {"/", "/", ""},         {"/x", "/", "x"},        {"\\x", "\\", "x"},
    {"a/", "a", ""}, {"a\\b", "a", "b"}, {"a/b\\c", "a/b", "c"}, {"a\\b/c", "a\\b", "c"}, {"a//b", "a/", "b"},
    {"//", "/", ""}, {"C:x", "", "C:x"}};

TEST(NEBFmDir, SplitsBehindTheLastSeparatorAlsoInPlace)
{
    for (auto const& [path, expectedDirectory, expectedFile] : s_splitCases)
    {
        std::string directory = path, file = path;
        NEBFmDir::splitPath(directory, &directory, nullptr);
        NEBFmDir::splitPath(file, nullptr, &file);
        EXPECT_EQ(expectedDirectory, directory) << path;
        EXPECT_EQ(expectedFile, file) << path;
    }
}

TEST(NEBFmDir, JoinsByTheSeparatorThatIsMissing)
{
    std::tuple<char const*, char const*, char const*> const rows[] = {
        {"", "x", "x"},       {"", "", ""},        {"a", "x", "a/x"}, {"a/", "x", "a/x"},
        {"a\\", "x", "a\\x"}, {"a", "/x", "a//x"}, {"a", "", "a/"}};
    for (auto const& [base, name, joined] : rows)
    {
        std::string text = base;
        NEBFmDir::joinPath(text, name);
        EXPECT_EQ(joined, text);
        I18NString wide(base);
        NEBFmDir::joinPath(wide, I18NString(name));
        EXPECT_STREQ(joined, wide.c_str());
    }
}

TEST(NEBFmDir, KnowsExactlyTheTypeAskedFor)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "file");
    std::ofstream(folder / "a\\b");
    ASSERT_EQ(0, mknod((folder / "socket").c_str(), S_IFSOCK | 0600, 0));
    std::filesystem::create_symlink("file", folder / "link");
    std::tuple<char const*, int, int> const rows[] = {
        {"file", 1, 0}, {"a\\b", 1, 0},    {"link", 1, 0}, {"socket", 0, 0}, {".", 0, 1},
        {"..", 0, 1},   {"missing", 0, 0}, {"a", 0, 0},    {"a/b", 0, 0},    {"file/x", 0, 0}};
    for (auto const& [name, isFile, isDirectory] : rows)
    {
        EXPECT_EQ(isFile, NEBFmDir::exists((folder / name).c_str(), s_file)) << name;
        EXPECT_EQ(isDirectory, NEBFmDir::exists((folder / name).c_str(), s_directory)) << name;
    }
    EXPECT_EQ(1, NEBFmDir::exists((folder.path() + "\\file").c_str(), s_file));
    EXPECT_EQ(0, NEBFmDir::exists(nullptr, s_file));
}

TEST(NEBFmDir, MakesDirectoriesThroughBothSeparators)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    std::ofstream("file");
    std::string const deep(5000, '/');
    std::tuple<std::string, int, char const*> const rows[] = {{"", 1, "."},
                                                              {"a", 1, "a"},
                                                              {"a", 1, "a"},
                                                              {"b\\c//d\\", 1, "b/c/d"},
                                                              {"e/../f/./g", 1, "f/g"},
                                                              {"file", 0, "."},
                                                              {"file/x", 0, "."},
                                                              {"/proc/x/y", 0, "."},
                                                              {folder / "h\\i", 1, "h/i"},
                                                              {deep + std::string(300, 'x'), 0, "."}};
    for (auto const& [path, isMade, made] : rows)
    {
        EXPECT_EQ(isMade, NEBFmDir::createRecursiveDir(path)) << path;
        EXPECT_EQ(1, NEBFmDir::exists(made, s_directory)) << made;
    }
}

TEST(NEBFmDir, LetsTwoMakersOfADirectoryBothSucceed)
{
    TemporaryFolder const folder;
    for (int round = 0; round < 50; ++round)
    {
        std::string const path = folder / std::to_string(round) + "/a/b/c/d";
        int other = 0;
        std::thread thread([&] { other = NEBFmDir::createRecursiveDir(path); });
        EXPECT_EQ(1, NEBFmDir::createRecursiveDir(path));
        thread.join();
        EXPECT_EQ(1, other);
    }
}

TEST(NEBFmDir, ListsFilesAndRealDirectoriesSortedByByte)
{
    TemporaryFolder const folder;
    for (char const* name : {"b", "a", "B", "\xC3\xA4", "a\\b"})
        std::ofstream(folder / name);
    for (char const* name : {"z", "D", ".hidden"})
        std::filesystem::create_directory(folder / name);
    for (char const* target : {"a", "z", "nowhere", "b/x"})
        std::filesystem::create_symlink(target, folder / (std::string("link-") + target[0]));
    std::filesystem::create_symlink("b", folder / "link");
    std::filesystem::create_symlink("loop", folder / "loop");
    ASSERT_EQ(0, mkfifo((folder / "pipe").c_str(), 0600));
    ASSERT_EQ(0, mknod((folder / "socket").c_str(), S_IFSOCK | 0600, 0));

    std::vector<std::string> files{"old"}, dirs{"old"};
    EXPECT_EQ(1, NEBFmDir::readDir(folder.path().c_str(), &files, nullptr, &dirs, nullptr));
    EXPECT_EQ((std::vector<std::string>{"B", "a", "a\\b", "b", "link", "link-a", "\xC3\xA4"}), files);
    EXPECT_EQ((std::vector<std::string>{".hidden", "D", "z"}), dirs);
    EXPECT_EQ(1, NEBFmDir::readDir(folder.path().c_str(), nullptr, nullptr, nullptr, nullptr));
    for (char const* name : {static_cast<char const*>(nullptr), "", "/nowhere", "/dev/null"})
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
    NEBFmDir::createRecursiveDir("a/b");
    std::filesystem::create_symlink("a/b", "link");
    std::filesystem::create_symlink("loop", "loop");
    std::string const here = folder.path();
    std::pair<char const*, std::string> const rows[] = {{"", ""},
                                                        {"//", "/"},
                                                        {".", here},
                                                        {"x.zip", here + "/x.zip"},
                                                        {"link/x", here + "/a/b/x"},
                                                        {"link\\x", here + "/a/b/x"},
                                                        {"link/../y/", here + "/a/y"},
                                                        {"no/./z/../y/", here + "/no/y"},
                                                        {"a//b/", here + "/a/b"},
                                                        {"loop/x/../y", here + "/loop/x/../y"}};
    for (auto const& [before, after] : rows)
    {
        std::string path = before;
        NEBFmDir::resolveEffectivePath(path);
        EXPECT_EQ(after, path) << before;
    }
}

TEST(NEBFmDir, NeverMovesANameToTheRootForLackOfACurrentDirectory)
{
    TemporaryFolder const folder;
    std::filesystem::create_directory(folder / "gone");
    CurrentFolder const current(folder / "gone");
    std::filesystem::remove(folder / "gone");
    std::string path = "x.zip";
    NEBFmDir::resolveEffectivePath(path);
    EXPECT_EQ("./x.zip", path);
}
}  // namespace
