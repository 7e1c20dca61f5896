#include "path/ARXFmDir.h"

#include <gtest/gtest.h>

#include "support/Raised.h"
#include "support/TemporaryFolder.h"

// The canonical form is compared with a model on replayed inputs.

namespace
{
TEST(ARXFmDirAbsolute, BeginsWithASeparatorAfterTheDrive)
{
    for (char const* path : {"/", "\\x", "//s/x", "C:/", "c:\\x"})
        EXPECT_TRUE(ARXFmDir::isAbsolutePath(path)) << path;
    for (char const* path : {"", "C", "C:", "C:x", "./x", ":/x", "1:/x", "@:/x", "[:/x", "ab:/x", "\xE4:/x"})
        EXPECT_FALSE(ARXFmDir::isAbsolutePath(path)) << path;
}

TEST(ARXFmDirComparison, IsExactExceptForSeparators)
{
    EXPECT_EQ(3u, ARXFmDir::findDifferentiatingPathOffset("a\\bc", "a/bd"));
    EXPECT_TRUE(ARXFmDir::isEquivalentPath("\\a/b", "/a\\b"));
    EXPECT_FALSE(ARXFmDir::isEquivalentPath("abc", "abcd"));
    EXPECT_FALSE(ARXFmDir::isEquivalentPath("abcd", "abc"));
}

TEST(ARXFmDirSeparator, BecomesASlash)
{
    std::string path = "\\\\s\\..\\\xDC/\\.";
    ARXFmDir::normalizePathSeparator(path);
    EXPECT_EQ("//s/../\xDC//.", path);
}

TEST(ARXFmDirSeparator, IsNotAddedToABackslash)
{
    std::string path = "a\\";
    ARXFmDir::makePathSlashTerminated(path);
    EXPECT_EQ("a\\", path);
}

// These results replace an argument, the harder case.
std::string absolute(char const* folder, std::string path)
{
    ARXFmDir::getAbsolutePath(folder, path.c_str(), path);
    return path;
}

std::string tail(char const* base, std::string path)
{
    ARXFmDir::getPathTail(path, base, path.c_str());
    return path;
}

TEST(ARXFmDirAbsolute, JoinsARelativePathToTheFolder)
{
    EXPECT_EQ("C:/w/../x\\y", absolute("C:/w", "../x\\y"));
    EXPECT_EQ("w\\x", absolute("w\\", "x"));
    EXPECT_EQ("/w/c:x", absolute("/w", "c:x"));
    EXPECT_EQ("c:/w/x", absolute("c:/w", "C:x"));
    EXPECT_EQ("D:/x", absolute("C:/w", "D:/x"));
}

TEST(ARXFmDirTail, FollowsTheLongestCommonPrefix)
{
    EXPECT_EQ("c/d.e", tail("\\a\\b", "/a/b/c/d.e"));
    EXPECT_EQ("c/d", tail("/a/b", "/a/bc/d"));
    EXPECT_EQ("", tail("/a/b", "/a/b"));
    EXPECT_EQ("b/c", tail("C:/a/", "C:/a/b/c"));
}

TEST(ARXFmDirTail, IsTheLastElementWithoutACommonPrefix)
{
    EXPECT_EQ("x", tail("C:/A", "c:/a/x"));
    EXPECT_EQ("b", tail("", "/a\\b"));
    EXPECT_EQ("b", tail(nullptr, "/a/b"));
}

struct RefusalRow
{
    char const* m_name;
    void (*m_call)(std::string& out);
    char const* m_assertion;
};

TEST(ARXFmDirRefused, LeavesTheResult)
{
    RefusalRow const rows[] = {
        {"Null", [](auto&) { ARXFmDir::hasDriveLetter(nullptr); }, "(path);"},
        {"OneOfTwoIsNull", [](auto&) { ARXFmDir::isEquivalentPath("a", nullptr); }, "(path1 && path2);"},
        {"NullFolder", [](auto& out) { ARXFmDir::getAbsolutePath(nullptr, "a", out); }, "(pwd);"},
        {"OtherDrive", [](auto& out) { ARXFmDir::getAbsolutePath("C:/w", "D:x", out); },
         "_NAMED(pwdDrive == pathDrive, \"Relative path has different drive letter than current "
         "directory.\");"},
        {"Empty", [](auto& out) { ARXFmDir::getNormalizedPath("", out); },
         "_NAMED(! path.empty(), \"Empty paths are not allowed.\");"},
        {"TailOfNull", [](auto& out) { ARXFmDir::getPathTail(out, "/", nullptr); },
         "_NAMED(fullPath, \"ARXFmDir::getPathTail - Null full path parameter is not allowed.\");"},
        {"TailOfEmpty", [](auto& out) { ARXFmDir::getPathTail(out, "/", ""); },
         "_NAMED(strlen(fullPath), \"ARXFmDir::getPathTail - empty full path parameter is not allowed.\");"},
    };
    for (RefusalRow const& row : rows)
    {
        std::string out = "before";
        EXPECT_EQ(std::string("NEBAssertError: NEB_ASSERT") + row.m_assertion,
                  raisedBy([&] { row.m_call(out); }).at(0))
            << row.m_name;
        EXPECT_EQ("before", out) << row.m_name;
    }
}

TEST(ARXFmDirCurrentFolder, HasAtMost260Bytes)
{
    TemporaryFolder const base;
    std::string const longest = base / std::string(259 - base.path().size(), 'x');
    std::filesystem::create_directory(longest);
    std::filesystem::create_directory(longest + "x");
    CurrentFolder const before(longest);
    std::string path;
    ARXFmDir::getAbsolutePath("a", path);
    EXPECT_EQ(longest + "/a", path);
    std::filesystem::current_path(longest + "x");
    EXPECT_EQ(2u, raisedBy([&] { ARXFmDir::getAbsolutePath("a", path); }).size());
}

TEST(ARXFmDirIsFile, CallsOnlyRegularFilesFiles)
{
    EXPECT_TRUE(ARXFmDir().isFile("\\proc\\self\\maps"));
    EXPECT_FALSE(ARXFmDir().isFile("/proc"));
}
}  // namespace
