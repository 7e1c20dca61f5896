#include "path/ARXFmDir.h"

#include <gtest/gtest.h>

#include "support/Raised.h"
#include "support/TemporaryFolder.h"

namespace
{
struct Steps : ARXFmDir
{
    using ARXFmDir::splitPathIntoParts;
};

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

TEST(ARXFmDirSeparator, BecomesASlashAndNothingElseChanges)
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
std::string normalized(std::string path)
{
    ARXFmDir::getNormalizedPath(path, path);
    return path;
}

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

TEST(ARXFmDirNormalized, KeepsDriveRootNamesAndOneSlashBetween)
{
    EXPECT_EQ("a/B/c", normalized("a\\B//c/"));
    EXPECT_EQ("..x/...", normalized("..x/./..."));
    EXPECT_EQ(".", normalized("./"));
    EXPECT_EQ("c:/D/e", normalized("C:\\D\\e"));
    EXPECT_EQ("c:x", normalized("C:x"));
    EXPECT_EQ("c:", normalized("C:."));
    EXPECT_EQ("/", normalized("\\//"));
    EXPECT_EQ("/s/x", normalized("\\\\s\\x"));
}

TEST(ARXFmDirNormalized, ResolvesParentsAsFarAsNamesReach)
{
    EXPECT_EQ("a/c", normalized("a/b/../c/./d/.."));
    EXPECT_EQ("y", normalized("x/./../y"));
    EXPECT_EQ("c:/", normalized("C:/a/.."));
    EXPECT_EQ(".", normalized("a/b/../.."));
    EXPECT_EQ("../../b", normalized("../a/../../b"));
    EXPECT_EQ("..", normalized("\\..\\.."));  // only "/" is protected
    EXPECT_EQ("c:..", normalized("C:.."));
}

TEST(ARXFmDirAbsolute, JoinsARelativePathToTheFolder)
{
    EXPECT_EQ("C:/w/../x\\y", absolute("C:/w", "../x\\y"));
    EXPECT_EQ("w\\x", absolute("w\\", "x"));
    EXPECT_EQ("x", absolute("", "x"));
    EXPECT_EQ("/w/", absolute("/w", ""));
    EXPECT_EQ("/w/c:x", absolute("/w", "c:x"));
    EXPECT_EQ("c:/w/x", absolute("c:/w", "C:x"));
    EXPECT_EQ("D:/x", absolute("C:/w", "D:/x"));
    std::string folder = "/w";
    ARXFmDir::getAbsolutePath(folder.c_str(), "x", folder);
    EXPECT_EQ("/w/x", folder);
}

TEST(ARXFmDirTail, FollowsTheLongestCommonPrefix)
{
    EXPECT_EQ("c/d.e", tail("\\a\\b", "/a/b/c/d.e"));
    EXPECT_EQ("c/d", tail("/a/b", "/a/bc/d"));
    EXPECT_EQ("a/b", tail("/x/y", "/a/b"));
    EXPECT_EQ("", tail("/a/b", "/a/b"));
    EXPECT_EQ("b/c", tail("C:/a/", "C:/a/b/c"));
}

TEST(ARXFmDirTail, IsTheLastElementWithoutACommonPrefix)
{
    EXPECT_EQ("x", tail("C:/A", "c:/a/x"));
    EXPECT_EQ("b", tail("", "/a\\b"));
    EXPECT_EQ("b", tail(nullptr, "/a/b"));
}

// The call fails with that assertion and leaves out as it was.
template <class Call>
void expectRefused(char const* assertion, Call const& call)
{
    std::string out = "before";
    EXPECT_EQ(std::string("NEBAssertError: NEB_ASSERT") + assertion, raisedBy([&] { call(out); }).at(0));
    EXPECT_EQ("before", out);
}

TEST(ARXFmDirRefused, NullIsNoPath)
{
    expectRefused("(path);", [](auto&) { ARXFmDir::hasDriveLetter(nullptr); });
    expectRefused("(path1 && path2);", [](auto&) { ARXFmDir::isEquivalentPath("a", nullptr); });
    expectRefused("(pwd);", [](auto& out) { ARXFmDir::getAbsolutePath(nullptr, nullptr, out); });
    expectRefused("_NAMED(fullPath, \"ARXFmDir::getPathTail - Null full path parameter is not allowed.\");",
                  [](auto& out) { ARXFmDir::getPathTail(out, "/", nullptr); });
}

TEST(ARXFmDirRefused, EmptyIsNoPathToTakeApart)
{
    expectRefused("_NAMED(! path.empty(), \"Empty paths are not allowed.\");",
                  [](auto& out) { ARXFmDir::getNormalizedPath("", out); });
    ARXFmDir::ARXFmDirPathParts parts;
    expectRefused("_NAMED(!path.empty(), \"Path may not be empty.\");",
                  [&](auto&) { Steps::splitPathIntoParts("", parts); });
    expectRefused(
        "_NAMED(strlen(fullPath), \"ARXFmDir::getPathTail - empty full path parameter is not allowed.\");",
        [](auto& out) { ARXFmDir::getPathTail(out, "/", ""); });
}

TEST(ARXFmDirRefused, ParentOfTheRoot)
{
    expectRefused("_NAMED(! isRoot(iter), \"Cannot descend under root with '..'\");",
                  [](auto& out) { ARXFmDir::getNormalizedPath("C:/a/../..", out); });
}

TEST(ARXFmDirRefused, RelativePathOnAnotherDrive)
{
    expectRefused(
        "_NAMED(pwdDrive == pathDrive, \"Relative path has different drive letter than current "
        "directory.\");",
        [](auto& out) { ARXFmDir::getAbsolutePath("C:/w", "D:x", out); });
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
