#include "path/ARXFmDir.h"

#include <gmock/gmock.h>

#include "NEBCore/NEBAssertError.h"
#include "NEBCore/NEBFmDir.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"

// As a product's own may be: it does not allow that file is the storage of path.
void NEBFmDir::splitPath(std::string const& path, std::string*, std::string* file)
{
    file->clear();
    file->append(path, path.find_last_of("/\\") + 1);
}

namespace
{
struct Steps : ARXFmDir
{
    using ARXFmDir::splitPathIntoParts;
};

TEST(ARXFmDirPrefix, IsALetterWithAColon)
{
    for (char const* path : {"C:", "a:b", "z:/"})
        EXPECT_TRUE(ARXFmDir::hasDriveLetter(path)) << path;
    for (char const* path : {"", "C", "ab:c", "1:/x", "@:/x", "[:/x", ":/x", "\xE4:/x"})
        EXPECT_FALSE(ARXFmDir::hasDriveLetter(path)) << path;
}

TEST(ARXFmDirAbsolute, BeginsWithASeparatorAfterTheDrive)
{
    for (char const* path : {"/", "\\x", "//s/x", "C:/", "c:\\x"})
        EXPECT_TRUE(ARXFmDir::isAbsolutePath(path)) << path;
    for (char const* path : {"", "C:", "C:x", "x/y", "./x", "1:/x"})
        EXPECT_FALSE(ARXFmDir::isAbsolutePath(path)) << path;
}

TEST(ARXFmDirComparison, FindsTheOffsetWhereTwoPathsPart)
{
    EXPECT_EQ(0u, ARXFmDir::findDifferentiatingPathOffset("", "x"));
    EXPECT_EQ(0u, ARXFmDir::findDifferentiatingPathOffset("A", "a"));
    EXPECT_EQ(2u, ARXFmDir::findDifferentiatingPathOffset("/a", "\\a\\b"));
    EXPECT_EQ(2u, ARXFmDir::findDifferentiatingPathOffset("\\a\\b", "/a"));
    EXPECT_EQ(3u, ARXFmDir::findDifferentiatingPathOffset("a/bc", "a/bd"));
    EXPECT_EQ(1u, ARXFmDir::findDifferentiatingPathOffset("\xC3\xA4", "\xC3\xB6"));
}

TEST(ARXFmDirComparison, IsExactExceptForSeparators)
{
    EXPECT_TRUE(ARXFmDir::isEquivalentPath("", ""));
    EXPECT_TRUE(ARXFmDir::isEquivalentPath("\\a/b", "/a\\b"));
    EXPECT_FALSE(ARXFmDir::isEquivalentPath("abc", "abcd"));
    EXPECT_FALSE(ARXFmDir::isEquivalentPath("abcd", "abc"));
    EXPECT_FALSE(ARXFmDir::isEquivalentPath("C:/a", "c:/a"));
    EXPECT_FALSE(ARXFmDir::isEquivalentPathChar('a', '/'));
}

TEST(ARXFmDirSeparator, BecomesASlashAndNothingElseChanges)
{
    std::string path = "\\\\s\\..\\\xDC/\\.";
    ARXFmDir::normalizePathSeparator(path);
    EXPECT_EQ("//s/../\xDC//.", path);
}

TEST(ARXFmDirSeparator, IsAddedWhereAPathHasNoneAtItsEnd)
{
    std::string paths[] = {"", "C:\\a", "a/", "a\\"};
    std::for_each(std::begin(paths), std::end(paths), ARXFmDir::makePathSlashTerminated);
    EXPECT_THAT(paths, testing::ElementsAre("", "C:\\a/", "a/", "a\\"));
}

std::string normalized(std::string path)
{
    std::string out = "before";
    ARXFmDir::getNormalizedPath(path, out);
    ARXFmDir::getNormalizedPath(path, path);
    EXPECT_EQ(out, path) << "in place";
    return out;
}

TEST(ARXFmDirNormalized, KeepsDriveRootNamesAndOneSlashBetween)
{
    EXPECT_EQ("a/B/c", normalized("a\\B//c/"));
    EXPECT_EQ("..x/...", normalized("..x/./..."));
    EXPECT_EQ("1:/x", normalized("1:/x"));
    EXPECT_EQ("\xC4:/\xFC", normalized("\xC4:/\xFC\\."));
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

// The result, which is the same where out is the storage of an argument.
template <class Place>
std::string placed(std::string folder, std::string path, Place const& place)
{
    std::string out = "before";
    std::string const folderBefore = folder;
    place(folder.c_str(), path.c_str(), out);
    place(folder.c_str(), path.c_str(), folder);
    place(folderBefore.c_str(), path.c_str(), path);
    EXPECT_EQ(out, folder) << "in the folder's storage";
    EXPECT_EQ(out, path) << "in the path's storage";
    return out;
}

std::string absolute(char const* folder, char const* path)
{
    return placed(folder, path,
                  [](auto* pwd, auto* name, auto& out) { ARXFmDir::getAbsolutePath(pwd, name, out); });
}

TEST(ARXFmDirAbsolute, JoinsARelativePathToTheFolder)
{
    EXPECT_EQ("C:/w/../x\\y", absolute("C:/w", "../x\\y"));
    EXPECT_EQ("w\\x", absolute("w\\", "x"));
    EXPECT_EQ("x", absolute("", "x"));
    EXPECT_EQ("/w/", absolute("/w", ""));
    EXPECT_EQ("/w/c:x", absolute("/w", "c:x"));
    EXPECT_EQ("c:/w/x", absolute("c:/w", "C:x"));
}

TEST(ARXFmDirAbsolute, LeavesAnAbsolutePathAlone)
{
    EXPECT_EQ("D:/x", absolute("C:/w", "D:/x"));
    EXPECT_EQ("\\x", absolute("C:/w", "\\x"));
}

std::string tail(char const* base, char const* path)
{
    return placed(base, path,
                  [](auto* folder, auto* name, auto& out) { ARXFmDir::getPathTail(out, folder, name); });
}

TEST(ARXFmDirTail, FollowsTheLongestCommonPrefix)
{
    EXPECT_EQ("c/d.e", tail("\\a\\b", "/a/b/c/d.e"));
    EXPECT_EQ("b\\c", tail("C:/a/", "C:/a/b\\c"));
    EXPECT_EQ("c/d", tail("/a/b", "/a/bc/d"));
    EXPECT_EQ("a/b", tail("/x/y", "/a/b"));
    EXPECT_EQ("", tail("/a/b", "/a/b"));
}

TEST(ARXFmDirTail, IsTheLastElementWithoutACommonPrefix)
{
    EXPECT_EQ("x", tail("C:/A", "c:/a/x"));
    EXPECT_EQ("b", tail("", "a\\b"));
    std::string out = "before";
    ARXFmDir::getPathTail(out, nullptr, "/a/b");
    EXPECT_EQ("b", out);
}

// The assertion that a call fails with; out must stay as it was.
template <class Call>
std::string refusal(Call const& call)
{
    std::string out = "before";
    Lines const raised = raisedBy([&] { call(out); });
    EXPECT_EQ("before", out);
    return raised.at(0);
}

TEST(ARXFmDirRefused, NullIsNoPath)
{
    std::string const path = "NEBAssertError: NEB_ASSERT(path);",
                      both = "NEBAssertError: NEB_ASSERT(path1 && path2);";
    EXPECT_EQ(path, refusal([](auto&) { ARXFmDir::hasDriveLetter(nullptr); }));
    EXPECT_EQ(path, refusal([](auto&) { ARXFmDir::isAbsolutePath(nullptr); }));
    EXPECT_EQ(path, refusal([](auto& out) { ARXFmDir::getAbsolutePath("/", nullptr, out); }));
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(pwd);",
              refusal([](auto& out) { ARXFmDir::getAbsolutePath(nullptr, nullptr, out); }));
    EXPECT_EQ(both, refusal([](auto&) { ARXFmDir::isEquivalentPath("a", nullptr); }));
    EXPECT_EQ(both, refusal([](auto&) { ARXFmDir::findDifferentiatingPathOffset(nullptr, "a"); }));
    EXPECT_EQ(
        "NEBAssertError: NEB_ASSERT_NAMED(fullPath, \"ARXFmDir::getPathTail - Null full path parameter is "
        "not allowed.\");",
        refusal([](auto& out) { ARXFmDir::getPathTail(out, "/", nullptr); }));
}

TEST(ARXFmDirRefused, EmptyIsNoPathToTakeApart)
{
    EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(! path.empty(), \"Empty paths are not allowed.\");",
              refusal([](auto& out) { ARXFmDir::getNormalizedPath("", out); }));
    ARXFmDir::ARXFmDirPathParts parts;
    EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(!path.empty(), \"Path may not be empty.\");",
              refusal([&](auto&) { Steps::splitPathIntoParts("", parts); }));
    EXPECT_EQ(
        "NEBAssertError: NEB_ASSERT_NAMED(strlen(fullPath), \"ARXFmDir::getPathTail - empty full path "
        "parameter is not allowed.\");",
        refusal([](auto& out) { ARXFmDir::getPathTail(out, "/", ""); }));
}

TEST(ARXFmDirRefused, ParentOfTheRoot)
{
    EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(! isRoot(iter), \"Cannot descend under root with '..'\");",
              refusal([](auto& out) { ARXFmDir::getNormalizedPath("C:/a/../..", out); }));
}

TEST(ARXFmDirRefused, RelativePathOnAnotherDrive)
{
    EXPECT_EQ(
        "NEBAssertError: NEB_ASSERT_NAMED(pwdDrive == pathDrive, \"Relative path has different drive letter "
        "than current directory.\");",
        refusal([](auto& out) { ARXFmDir::getAbsolutePath("C:/w", "D:x", out); }));
}

// What getAbsolutePath gives for "a" in a folder whose path has that many bytes.
std::string absoluteBelow(std::size_t length)
{
    TemporaryFolder const base;
    std::string const folder = base / std::string(length - 1 - base.path().size(), 'x');
    std::filesystem::create_directory(folder);
    CurrentFolder const current(folder);
    std::string out;
    ARXFmDir::getAbsolutePath("a", out);
    return out;
}

TEST(ARXFmDirCurrentFolder, HasAtMost260Bytes)
{
    EXPECT_EQ(262u, absoluteBelow(260).size());
    EXPECT_THROW(absoluteBelow(261), NEBAssertError);
}

TEST(ARXFmDirIsFile, CallsOnlyRegularFilesFiles)
{
    EXPECT_TRUE(ARXFmDir().isFile("\\proc\\self\\maps"));
    EXPECT_FALSE(ARXFmDir().isFile("/proc"));
    EXPECT_FALSE(ARXFmDir().isFile("/missing"));
    EXPECT_FALSE(ARXFmDir().isFile(nullptr));
}
}  // namespace
