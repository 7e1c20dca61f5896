#include "NEBCore/NEBFmDir.h"

#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TemporaryFolder.h"

namespace
{
using Names = std::vector<std::string>;

struct SplitRow
{
    char const* m_path;
    char const* m_directory;
    char const* m_file;
};

TEST(NEBFmDir, SplitsAfterTheLastSeparator)
{
    SplitRow const rows[] = {{"", "", ""},    {"x", "", "x"},         {"/x", "/", "x"},
                             {"a/", "a", ""}, {"a/b\\c", "a/b", "c"}, {"//", "/", ""}};
    for (SplitRow const& row : rows)
    {
        SCOPED_TRACE(row.m_path);
        std::string directory = row.m_path, file = row.m_path;  // each is input and output
        NEBFmDir::splitPath(directory, &directory, nullptr);
        NEBFmDir::splitPath(file, nullptr, &file);
        EXPECT_EQ(row.m_directory, directory);
        EXPECT_EQ(row.m_file, file);
    }
}

struct MakeRow
{
    char const* m_path;
    char const* m_made;  // the last folder made; null if the path is refused
};

TEST(NEBFmDir, MakesDirectoriesThroughBothSeparators)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    std::ofstream("file");
    MakeRow const rows[] = {
        {"", "."}, {"a", "a"}, {"b\\c//d\\", "b/c/d"}, {"e/../f/./g", "f/g"}, {"file/x", nullptr}};
    for (MakeRow const& row : rows)
    {
        SCOPED_TRACE(row.m_path);
        EXPECT_EQ(row.m_made != nullptr, NEBFmDir::createRecursiveDir(row.m_path));
        EXPECT_EQ(row.m_made != nullptr, NEBFmDir::exists(row.m_made, NEBFmDir::s_directory));
    }
}

class NEBFmDirListing : public testing::Test
{
protected:
    NEBFmDirListing()
    {
        for (char const* name : {"b", "a", "B", "\xC3\xA4", "a\\b"})
            std::ofstream(m_folder / name);
        for (char const* name : {"z", "D", ".hidden"})
            std::filesystem::create_directory(m_folder / name);
        std::filesystem::create_symlink("a", m_folder / "link to file");
        std::filesystem::create_symlink("z", m_folder / "link to folder");
        std::filesystem::create_symlink("nowhere", m_folder / "link to nothing");
        std::filesystem::create_symlink("loop", m_folder / "loop");
        ::mkfifo((m_folder / "pipe").c_str(), 0600);
    }

    TemporaryFolder const m_folder;
};

TEST_F(NEBFmDirListing, ExistsFollowsLinks)
{
    for (char const* const name : {"a\\b", "link to file", ".\\b"})
        EXPECT_EQ(1, NEBFmDir::exists((m_folder / name).c_str(), NEBFmDir::s_regularFile)) << name;
    for (char const* const name : {"link to folder", "z\\.."})
        EXPECT_EQ(1, NEBFmDir::exists((m_folder / name).c_str(), NEBFmDir::s_directory)) << name;
    for (char const* const name : {"pipe", "link to nothing", "z"})
        EXPECT_EQ(0, NEBFmDir::exists((m_folder / name).c_str(), NEBFmDir::s_regularFile)) << name;
    EXPECT_EQ(0, NEBFmDir::exists(nullptr, NEBFmDir::s_regularFile));
}

TEST_F(NEBFmDirListing, ReadDirSortsByByte)
{
    Names files{"old"}, dirs{"old"};
    EXPECT_EQ(1, NEBFmDir::readDir(m_folder.path().c_str(), &files, nullptr, &dirs, nullptr));
    EXPECT_EQ((Names{"B", "a", "a\\b", "b", "link to file", "\xC3\xA4"}), files);
    EXPECT_EQ((Names{".hidden", "D", "z"}), dirs);
    EXPECT_EQ(1, NEBFmDir::readDir(m_folder.path().c_str(), nullptr, nullptr, nullptr, nullptr));
}

TEST_F(NEBFmDirListing, FailedReadDirEmptiesTheLists)
{
    Names files{"old"}, dirs{"old"};
    EXPECT_EQ(0, NEBFmDir::readDir("/nowhere", &files, nullptr, &dirs, nullptr));
    EXPECT_TRUE(files.empty() && dirs.empty());
}

struct ResolveRow
{
    char const* m_path;
    char const* m_below;  // the current directory
};

TEST(NEBFmDirResolve, TakesPathsThatExistOnlyInPart)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    std::filesystem::create_directories("a/b");
    std::filesystem::create_symlink("a/b", "link");
    std::filesystem::create_symlink("loop", "loop");
    ResolveRow const rows[] = {
        {".", ""},         {"link\\x", "/a/b/x"},          {"link/../y/", "/a/y"}, {"no/./z/../y/", "/no/y"},
        {"a//b/", "/a/b"}, {"loop/x/../y", "/loop/x/../y"}};
    for (ResolveRow const& row : rows)
    {
        std::string path = row.m_path;
        NEBFmDir::resolveEffectivePath(path);
        EXPECT_EQ(folder.path() + row.m_below, path) << row.m_path;
    }
    std::string empty, root = "//", relative = "x.zip";
    NEBFmDir::resolveEffectivePath(empty);
    NEBFmDir::resolveEffectivePath(root);
    EXPECT_EQ("", empty);
    EXPECT_EQ("/", root);
    std::filesystem::remove_all(folder.path());
    NEBFmDir::resolveEffectivePath(relative);
    EXPECT_EQ("./x.zip", relative) << "without a current directory";
}
}  // namespace
