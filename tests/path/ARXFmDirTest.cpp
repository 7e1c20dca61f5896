#include "path/ARXFmDir.h"

#include <string>

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
    static auto constexpr removeTrailing = &ARXFmDir::removeTrailingDirectorySeparator;
};

namespace
{
// Rows of neither, of drive prefixes, of absolute paths and of both.
char const s_kindCases[] =
    "- C ab:c x/y ./x 1:/x :/ [:/ @:/ \xE4:/x, C: C:x c:x a:b, / \\ /x \\x //s/x \\\\s\\x, C:/ z:/ c:\\x";

TEST(ARXFmDir, TellsDriveAndAbsolutePathsByTheFirstBytes)
{
    auto const rows = table(s_kindCases);
    for (int kind = 0; kind < 4; ++kind)
        for (std::string const& path : rows.at(static_cast<std::size_t>(kind)))
            EXPECT_EQ(kind,
                      ARXFmDir::hasDriveLetter(path.c_str()) + 2 * ARXFmDir::isAbsolutePath(path.c_str()));
}

TEST(ARXFmDir, ComparesBytesExactlyButForSeparators)
{
    for (int pair = 0; pair < 256 * 256; ++pair)
    {
        char const a = static_cast<char>(pair / 256), b = static_cast<char>(pair % 256);
        bool const isEqual = a == b || (a == '/' && b == '\\') || (a == '\\' && b == '/');
        EXPECT_EQ(isEqual, ARXFmDir::isEquivalentPathChar(a, b)) << pair;
    }
}

// Two paths, and the offset at which they part; "=" where they are equivalent.
char const s_compareCases[] =
    "- - 0=, - x 0, abc abc 3=, abc abcd 3, a/b a\\b 3=, a/b a/c 2, /a \\a\\b 2, A a 0, C:/a c:/a 0, "
    "a/bc a/bd 3, a/b/ a/b 3, a//b a/b 2, ./a a 0, \xC3\xA4 \xC3\xB6 1";

TEST(ARXFmDir, ComparesPathsInEitherOrder)
{
    for (Words const& row : table(s_compareCases))
        for (std::size_t const first : {0u, 1u})
        {
            char const *path1 = row[first].c_str(), *path2 = row[1 - first].c_str();
            std::string const offset = std::to_string(ARXFmDir::findDifferentiatingPathOffset(path1, path2));
            char const* const sign = ARXFmDir::isEquivalentPath(path1, path2) ? "=" : "";
            EXPECT_EQ(row, (Words{row[0], row[1], offset + sign}));
        }
}

// A path, with its separators normalised, and slash terminated.
char const s_changeCases[] =
    "- - -, a a a/, C: C: C:/, a/ a/ a/, a\\b/c\\ a/b/c/ a\\b/c\\, \\\\s\\x //s/x \\\\s\\x/, "
    ".\\..//. ./..//. .\\..//./, \xDC\\\xA5 \xDC/\xA5 \xDC\\\xA5/";

TEST(ARXFmDir, ChangesSeparatorsAndNothingElse)
{
    for (Words const& row : table(s_changeCases))
    {
        std::string normalised = row[0], terminated = normalised;
        ARXFmDir::normalizePathSeparator(normalised);
        ARXFmDir::makePathSlashTerminated(terminated);
        EXPECT_EQ(row, (Words{row[0], normalised, terminated}));
    }
}

// Before and after, head, tail.
char const s_splitCases[] =
    "a/b/c a/b/c a/b c, a/b/ a/b a b, a a - a, /a /a / a, \\a \\a \\ a, /a/ /a / a, a//b a//b a b, "
    "//a //a / a, / / / -, /// / / -, \\/a \\/a \\ a";

TEST(ARXFmDir, SplitsOneElementOffFromTheRight)
{
    for (Words const& row : table(s_splitCases))
    {
        std::string_view path = row[0], head = "x", tail = "x";
        ARXFmDirSteps::split(path, head, tail);
        EXPECT_EQ(row, (Words{row[0], std::string(path), std::string(head), std::string(tail)}));
    }
}

// Path, drive, elements.
char const s_elementCases[] =
    "a/b/c - a b c, /a/b - / a b, \\a\\b - \\ a b, C:\\D\\e c: \\ D e, C:x c: x, C:/ c: /, C: c:, "
    "//s/x - / s x, \\\\s\\x - \\ s x, a//b/ - a b, \xC4:\\..\\. - \xC4: .. .";

TEST(ARXFmDir, SplitsIntoDriveAndElements)
{
    for (Words const& row : table(s_elementCases))
    {
        ARXFmDir::ARXFmDirPathParts parts;
        ARXFmDirSteps::splitPathIntoParts(row[0], parts);
        Words seen{row[0], parts.m_drive};
        seen.insert(seen.end(), parts.m_parts.begin(), parts.m_parts.end());
        EXPECT_EQ(row, seen);
    }
}

// A result, and the paths that give it.
char const s_normalCases[] =
    "a/b/c a/b/c a\\b\\c a//b\\c/, /a/b /a/b \\a\\b, c:/D/e C:\\D\\e c:/D//e\\, c:/ C:/ C:\\ C:/a/.., "
    "c: C: C:. C:a/.. C:\\.., c:x C:x, c:.. C:.., c:/b C:\\a\\..\\b, / / \\ // /// \\/, /a ///a, "
    "/s/x //s/x \\\\s\\x, . . ./ a/.. a/b/../.. \\.. \\a\\..\\.., ../.. ../.., ../b ../a/../b, "
    ".. .. ./.. a/../.. a/b/../../.. \\..\\.., a/b a/./b, a/c a/b/../c/./d/.., y x/./../y, a:b a:b A:b, "
    "ab:c ab:c, C C, 1:/x 1:/x, ..x/... ..x/..., \xC4:/\xFC \xC4:/\xFC\\.";

TEST(ARXFmDir, NormalisesPathsAlsoInPlace)
{
    for (Words const& row : table(s_normalCases))
        for (std::string path : row)  // the result too: the second time there is nothing to do
        {
            std::string out = "before";
            ARXFmDir::getNormalizedPath(path, out);
            ARXFmDir::getNormalizedPath(path, path);
            EXPECT_EQ((Words{row[0], row[0]}), (Words{out, path}));
        }
}

TEST(ARXFmDir, NormalisesEveryShortPathAsTheModelDoes)
{
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

// Working directory, path, result.
char const s_absoluteCases[] =
    "C:/w x/y C:/w/x/y, C:/w/ x C:/w/x, C:/w c:x C:/w/x, c:/w C:x\\y c:/w/x\\y, C:/w ../x C:/w/../x, "
    "C:/w D:/x D:/x, C:/w /x /x, /w \\x \\x, /w x /w/x, /w c:x /w/c:x, C:/w - C:/w/, w\\ \xE4 w\\\xE4, "
    "- x x, C: c: C:/";

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

TEST(ARXFmDir, PutsRelativePathsUnderTheWorkingDirectory)
{
    expectPlaced(s_absoluteCases, ARXFmDir::getAbsolutePath);
}

// Base, full path, tail.
char const s_tailCases[] =
    "/a/b /a/b/c/d.e c/d.e, /a/b/ /a/b/c/d.e c/d.e, \\a\\b /a/b/c c, C:\\a C:/a/b\\c b\\c, "
    "/a/b /a/bc/d c/d, /x/y /a/b a/b, /a/b /a/b -, /a/b/ /a/b/ -, /a/b/c /a/b -, x /a/b b, C:/A c:/a/x x, "
    "- /a/b b, - a\\b b, - a/ -, \xC3\xA4 \xC3\xA4/\xC3\xB6 \xC3\xB6";

TEST(ARXFmDir, CutsTheCommonPrefixOffAFullPath)
{
    auto const cut = [](char const* base, char const* path, std::string& out)
    { ARXFmDir::getPathTail(out, base, path); };
    expectPlaced(s_tailCases, cut);
    std::string out = "before";
    cut(nullptr, "/a/b", out);
    EXPECT_EQ("b", out);
}

// Expects an assertion of that text, and an out string left alone.
template <class Call>
void expectRefused(std::string const& text, Call const& call)
{
    std::string out = "before";
    EXPECT_EQ("NEBAssertError: " + text, raisedBy([&] { call(out); }).at(0));
    EXPECT_EQ("before", out);
}

char const s_both[] = "NEB_ASSERT(path1 && path2);";
char const s_noPath[] = R"(NEB_ASSERT_NAMED(! path.empty(), "Empty paths are not allowed.");)";
char const s_empty[] = R"(NEB_ASSERT_NAMED(!path.empty(), "Path may not be empty.");)";
char const s_root[] = R"(NEB_ASSERT_NAMED(! isRoot(iter), "Cannot descend under root with '..'");)";
char const s_drive[] =
    "NEB_ASSERT_NAMED(pwdDrive == pathDrive, "
    "\"Relative path has different drive letter than current directory.\");";
std::string const s_tail = "\"ARXFmDir::getPathTail - ";

TEST(ARXFmDir, RefusesMisuseAndLeavesTheOutStringAlone)
{
    expectRefused("NEB_ASSERT(path);", [](auto&) { ARXFmDir::hasDriveLetter(nullptr); });
    expectRefused("NEB_ASSERT(path);", [](auto&) { ARXFmDir::isAbsolutePath(nullptr); });
    expectRefused(s_both, [](auto&) { ARXFmDir::isEquivalentPath(nullptr, "a"); });
    expectRefused(s_both, [](auto&) { ARXFmDir::isEquivalentPath("a", nullptr); });
    expectRefused(s_both, [](auto&) { ARXFmDir::findDifferentiatingPathOffset(nullptr, "a"); });
    expectRefused(s_both, [](auto&) { ARXFmDir::findDifferentiatingPathOffset("a", nullptr); });
    expectRefused(s_noPath, [](auto& out) { ARXFmDir::getNormalizedPath("", out); });
    std::string_view path, head, tail;
    ARXFmDir::ARXFmDirPathParts parts;
    expectRefused(s_empty, [&](auto&) { ARXFmDirSteps::split(path, head, tail); });
    expectRefused(s_empty, [&](auto&) { ARXFmDirSteps::removeTrailing(path); });
    expectRefused(s_empty, [&](auto&) { ARXFmDirSteps::splitPathIntoParts("", parts); });
    for (char const* descent : {"/..", "C:/..", "/a/../..", "/a/b/../../.."})
        expectRefused(s_root, [&](auto& out) { ARXFmDir::getNormalizedPath(descent, out); });
    expectRefused("NEB_ASSERT(pwd);", [](auto& out) { ARXFmDir::getAbsolutePath(nullptr, nullptr, out); });
    expectRefused("NEB_ASSERT(path);", [](auto& out) { ARXFmDir::getAbsolutePath("/", nullptr, out); });
    expectRefused("NEB_ASSERT(path);", [](auto& out) { ARXFmDir::getAbsolutePath(nullptr, out); });
    expectRefused(s_drive, [](auto& out) { ARXFmDir::getAbsolutePath("C:/w", "D:x", out); });
    expectRefused("NEB_ASSERT_NAMED(fullPath, " + s_tail + "Null full path parameter is not allowed.\");",
                  [](auto& out) { ARXFmDir::getPathTail(out, "/", nullptr); });
    expectRefused(
        "NEB_ASSERT_NAMED(strlen(fullPath), " + s_tail + "empty full path parameter is not allowed.\");",
        [](auto& out) { ARXFmDir::getPathTail(out, "/", ""); });
}

char const s_current[] =
    "NEB_ASSERT_NAMED(pwd, \"The current directory cannot be read or is longer than 260 bytes.\");";

TEST(ARXFmDir, TakesACurrentDirectoryOfAtMost260Bytes)
{
    TemporaryFolder const base;
    auto const call = [](std::string& out) { ARXFmDir::getAbsolutePath("a\\b", out); };
    for (std::size_t const length : {260u, 261u})
    {
        std::string const path = base / std::string(length - base.path().size() - 1, 'x');
        std::filesystem::create_directory(path);
        CurrentFolder const current(path);
        if (length == 261)
            return expectRefused(s_current, call);
        std::string out;
        call(out);
        EXPECT_EQ(path + "/a\\b", out);
    }
}

TEST(ARXFmDir, CallsOnlyRegularFilesFiles)
{
    for (char const* path : {"/proc", "/missing", "\\proc\\self\\maps", static_cast<char const*>(nullptr)})
        EXPECT_EQ(path && *path == '\\', ARXFmDir().isFile(path));
}
}  // namespace
