#include "path/ARXFmDir.h"

#include <memory>

#include <gtest/gtest.h>

#include "path/PathModel.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"
#include "support/Words.h"

// Befriended by ARXFmDir.
struct ARXFmDirSteps : ARXFmDir
{
    using ARXFmDir::splitPathIntoParts;
    static auto constexpr split = &ARXFmDir::mySplitPath;
};

namespace
{
TEST(ARXFmDir, TellsDriveAndAbsolutePathsByTheFirstBytes)
{
    // Rows of neither, of drive prefixes, of absolute paths and of both.
    auto const rows = table(
        "- C ab:c x/y ./x 1:/x :/ [:/ @:/ \xE4:/x, C: C:x c:x a:b, / \\ /x \\x //s/x \\\\s\\x, C:/ z:/ "
        "c:\\x");
    for (int kind = 0; kind < 4; ++kind)
        for (std::string const& path : rows.at(static_cast<std::size_t>(kind)))
            EXPECT_EQ(kind,
                      ARXFmDir::hasDriveLetter(path.c_str()) + 2 * ARXFmDir::isAbsolutePath(path.c_str()));
}

TEST(ARXFmDir, ComparesBytesExactlyButForSeparatorsInEitherOrder)
{
    // Two paths, and the offset at which they part; "=" where they are equivalent.
    char const rows[] =
        "- - 0=, - x 0, abc abc 3=, abc abcd 3, a/b a\\b 3=, a/b a/c 2, /a \\a\\b 2, A a 0, C:/a c:/a 0, "
        "a/bc a/bd 3, a/b/ a/b 3, a//b a/b 2, ./a a 0, \xC3\xA4 \xC3\xB6 1";
    for (Words row : table(rows))
        for (int order = 0; order < 2; ++order, std::swap(row[0], row[1]))
        {
            char const *path1 = row[0].c_str(), *path2 = row[1].c_str();
            std::string const offset = std::to_string(ARXFmDir::findDifferentiatingPathOffset(path1, path2));
            EXPECT_EQ(row[2], offset + (ARXFmDir::isEquivalentPath(path1, path2) ? "=" : "")) << row[0];
        }
    EXPECT_TRUE(ARXFmDir::isEquivalentPathChar('\\', '/') && !ARXFmDir::isEquivalentPathChar('a', 'A'));
}

TEST(ARXFmDir, ChangesSeparatorsAndNothingElse)
{
    // A path, with its separators normalised, and slash terminated.
    char const rows[] =
        "- - -, a a a/, C: C: C:/, a/ a/ a/, a\\b/c\\ a/b/c/ a\\b/c\\, \\\\s\\x //s/x \\\\s\\x/, "
        ".\\..//. ./..//. .\\..//./, \xDC\\\xA5 \xDC/\xA5 \xDC\\\xA5/";
    for (Words const& row : table(rows))
    {
        std::string normalised = row[0], terminated = row[0];
        ARXFmDir::normalizePathSeparator(normalised);
        ARXFmDir::makePathSlashTerminated(terminated);
        EXPECT_EQ(row, (Words{row[0], normalised, terminated}));
    }
}

TEST(ARXFmDir, SplitsOneElementOffFromTheRight)
{
    // Before and after, head, tail.
    char const rows[] =
        "a/b/ a/b a b, a a - a, \\a \\a \\ a, a//b a//b a b, //a //a / a, /// / / -, \\/a \\/a \\ a";
    for (Words const& row : table(rows))
    {
        std::string_view path = row[0], head = "x", tail = "x";
        ARXFmDirSteps::split(path, head, tail);
        EXPECT_EQ(row, (Words{row[0], std::string(path), std::string(head), std::string(tail)}));
    }
}

TEST(ARXFmDir, NormalisesPathsAlsoInPlaceAndEveryShortOneAsTheModelDoes)
{
    // A result, and the paths that give it.
    char const rows[] =
        "a/b/c a\\b\\c a//b\\c/, /a/b \\a\\b, c:/D/e C:\\D\\e c:/D//e\\, c:/ C:/ C:\\ C:/a/.., "
        "c: C: C:. C:a/.. C:\\.., c:x C:x, c:.. C:.., c:/b C:\\a\\..\\b, / \\ // \\/, /a ///a, "
        "/s/x //s/x \\\\s\\x, . ./ a/.. a/b/../.. \\.. \\a\\..\\.., ../b ../a/../b, "
        ".. ./.. a/../.. a/b/../../.. \\..\\.., a/c a/b/../c/./d/.., y x/./../y, a:b A:b, "
        "ab:c ab:c, 1:/x 1:/x, ..x/... ..x/..., \xC4:/\xFC \xC4:/\xFC\\.";
    for (Words const& row : table(rows))
        for (std::string path : row)  // the result too: the second time there is nothing to do
        {
            std::string out = "before";
            ARXFmDir::getNormalizedPath(path, out);
            ARXFmDir::getNormalizedPath(path, path);
            EXPECT_EQ((Words{row[0], row[0]}), (Words{out, path}));
        }

    Words paths = {""};
    for (std::size_t i = 0; i < paths.size(); ++i)
    {
        std::string const path = paths[i];
        for (char const* byte = "/\\.aC:"; *byte && path.size() < 7; ++byte)
            paths.push_back(path + *byte);
        std::string out;
        raisedBy([&] { ARXFmDir::getNormalizedPath(path, out); });
        ASSERT_EQ(path.empty() ? "" : modelNormalizedPath(path), out) << path;
    }
}

// Each row gives its third word, also where out is the storage of an argument.
void expectPlaced(char const* rows, void (*place)(char const*, char const*, std::string&))
{
    for (Words const& row : table(rows))
    {
        std::string out1 = row[0], out2 = row[1];
        place(out1.c_str(), row[1].c_str(), out1);
        place(row[0].c_str(), out2.c_str(), out2);
        EXPECT_EQ((Words{row[2], row[2]}), (Words{out1, out2})) << row[1] << " at " << row[0];
    }
}

TEST(ARXFmDir, PutsRelativePathsUnderAFolderAndCutsItOff)
{
    // Working directory, path, result.
    expectPlaced(
        "C:/w x/y C:/w/x/y, C:/w/ x C:/w/x, C:/w c:x C:/w/x, c:/w C:x\\y c:/w/x\\y, C:/w ../x C:/w/../x, "
        "C:/w D:/x D:/x, C:/w /x /x, /w \\x \\x, /w c:x /w/c:x, C:/w - C:/w/, w\\ \xE4 w\\\xE4, "
        "- x x, C: c: C:/",
        ARXFmDir::getAbsolutePath);
    // Base, full path, tail.
    expectPlaced(
        "/a/b /a/b/c/d.e c/d.e, /a/b/ /a/b/c c, \\a\\b /a/b/c c, C:\\a C:/a/b\\c b\\c, /a/b /a/bc/d c/d, "
        "/x/y /a/b a/b, /a/b /a/b -, /a/b/ /a/b/ -, x /a/b b, C:/A c:/a/x x, - a\\b b, - a/ -, "
        "\xC3\xA4 \xC3\xA4/\xC3\xB6 \xC3\xB6",
        [](auto* base, auto* path, auto& out) { ARXFmDir::getPathTail(out, base, path); });
    std::string out = "before";
    ARXFmDir::getPathTail(out, nullptr, "/a/b");
    EXPECT_EQ("b", out);
}

TEST(ARXFmDir, RefusesMisuseAndLeavesTheOutStringAlone)
{
    using Parts = ARXFmDir::ARXFmDirPathParts;
    std::string const both = "(path1 && path2);", tail = "\"ARXFmDir::getPathTail - ";
    std::pair<std::string, void (*)(std::string & out)> const refusals[] = {
        {"(path);", [](auto&) { ARXFmDir::hasDriveLetter(nullptr); }},
        {"(path);", [](auto&) { ARXFmDir::isAbsolutePath(nullptr); }},
        {both, [](auto&) { ARXFmDir::isEquivalentPath(nullptr, "a"); }},
        {both, [](auto&) { ARXFmDir::findDifferentiatingPathOffset("a", nullptr); }},
        {"_NAMED(! path.empty(), \"Empty paths are not allowed.\");",
         [](auto& out) { ARXFmDir::getNormalizedPath("", out); }},
        {"_NAMED(!path.empty(), \"Path may not be empty.\");",
         [](auto&) { ARXFmDirSteps::splitPathIntoParts("", *std::make_unique<Parts>()); }},
        {"_NAMED(! isRoot(iter), \"Cannot descend under root with '..'\");",
         [](auto& out) { ARXFmDir::getNormalizedPath("C:/a/../..", out); }},
        {"(pwd);", [](auto& out) { ARXFmDir::getAbsolutePath(nullptr, nullptr, out); }},
        {"(path);", [](auto& out) { ARXFmDir::getAbsolutePath("/", nullptr, out); }},
        {"_NAMED(pwdDrive == pathDrive, "
         "\"Relative path has different drive letter than current directory.\");",
         [](auto& out) { ARXFmDir::getAbsolutePath("C:/w", "D:x", out); }},
        {"_NAMED(fullPath, " + tail + "Null full path parameter is not allowed.\");",
         [](auto& out) { ARXFmDir::getPathTail(out, "/", nullptr); }},
        {"_NAMED(strlen(fullPath), " + tail + "empty full path parameter is not allowed.\");",
         [](auto& out) { ARXFmDir::getPathTail(out, "/", ""); }}};
    for (auto const& [text, call] : refusals)
    {
        std::string out = "before";
        EXPECT_EQ("NEBAssertError: NEB_ASSERT" + text, raisedBy([&, &call = call] { call(out); }).at(0));
        EXPECT_EQ("before", out);
    }
}

TEST(ARXFmDir, TakesACurrentDirectoryOfAtMost260Bytes)
{
    TemporaryFolder const base;
    std::string const folder = base / std::string(259 - base.path().size(), 'x');
    std::string out;
    Lines raised;
    for (std::string const& current : {folder, folder + "x"})
    {
        EXPECT_EQ(Lines(), raised);  // by the shorter one
        std::filesystem::create_directory(current);
        CurrentFolder const made(current);
        raised = raisedBy([&] { ARXFmDir::getAbsolutePath("a\\b", out); });
    }
    EXPECT_EQ(folder + "/a\\b", out);
    EXPECT_EQ(
        "NEBAssertError: NEB_ASSERT_NAMED(pwd, \"The current directory cannot be read or is longer than "
        "260 bytes.\");",
        raised.at(0));
}

TEST(ARXFmDir, CallsOnlyRegularFilesFiles)
{
    for (char const* path : {"/proc", "/missing", "\\proc\\self\\maps", static_cast<char const*>(nullptr)})
        EXPECT_EQ(path && *path == '\\', ARXFmDir().isFile(path));
}
}  // namespace
