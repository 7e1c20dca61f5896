#include "path/ARXFmDir.h"

#include <fstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "path/PathModel.h"
#include "support/ExpectAssertion.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"

namespace
{
using ThreeTexts = std::tuple<char const*, char const*, char const*>;

std::tuple<char const*, bool, bool> const s_kindCases[] = {
    {"", false, false},    {"C", false, false},       {"C:", true, false},      {"C:x", true, false},
    {"c:x", true, false},  {"a:b", true, false},      {"ab:c", false, false},   {"x/y", false, false},
    {"./x", false, false}, {"1:/x", false, false},    {":/", false, false},     {"[:/", false, false},
    {"@:/", false, false}, {"\xE4:/x", false, false}, {"C:/", true, true},      {"z:/", true, true},
    {"c:\\x", true, true}, {"/", false, true},        {"\\", false, true},      {"/x", false, true},
    {"\\x", false, true},  {"//s/x", false, true},    {"\\\\s\\x", false, true}};

TEST(ARXFmDir, TellsDriveAndAbsolutePathsByTheFirstBytes)
{
    for (auto const& [path, hasDrive, isAbsolute] : s_kindCases)
    {
        EXPECT_EQ(hasDrive, ARXFmDir::hasDriveLetter(path)) << path;
        EXPECT_EQ(isAbsolute, ARXFmDir::isAbsolutePath(path)) << path;
    }
}

TEST(ARXFmDir, ComparesBytesExactlyButForSeparators)
{
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b)
        {
            bool const separators = (a == '/' || a == '\\') && (b == '/' || b == '\\');
            EXPECT_EQ(a == b || separators,
                      ARXFmDir::isEquivalentPathChar(static_cast<char>(a), static_cast<char>(b)));
        }
}

std::tuple<char const*, char const*, bool, unsigned> const s_compareCases[] = {
    {"", "", true, 0},          {"", "x", false, 0},
    {"abc", "abc", true, 3},    {"abc", "abcd", false, 3},
    {"a/b", "a\\b", true, 3},   {"a/b", "a/c", false, 2},
    {"/a", "\\a\\b", false, 2}, {"A", "a", false, 0},
    {"C:/a", "c:/a", false, 0}, {"a/bc", "a/bd", false, 3},
    {"a/b/", "a/b", false, 3},  {"a//b", "a/b", false, 2},
    {"./a", "a", false, 0},     {"\xC3\xA4", "\xC3\xB6", false, 1},
};

TEST(ARXFmDir, ComparesPathsInEitherOrder)
{
    for (auto const& [path1, path2, isEquivalent, offset] : s_compareCases)
    {
        SCOPED_TRACE(std::string(path1) + " against " + path2);
        EXPECT_EQ(isEquivalent, ARXFmDir::isEquivalentPath(path1, path2));
        EXPECT_EQ(isEquivalent, ARXFmDir::isEquivalentPath(path2, path1));
        EXPECT_EQ(offset, ARXFmDir::findDifferentiatingPathOffset(path1, path2));
        EXPECT_EQ(offset, ARXFmDir::findDifferentiatingPathOffset(path2, path1));
    }
}

ThreeTexts const s_changeCases[] = {{"", "", ""},
                                    {"a", "a", "a/"},
                                    {"C:", "C:", "C:/"},
                                    {"a/", "a/", "a/"},
                                    {"a\\b/c\\", "a/b/c/", "a\\b/c\\"},
                                    {"\\\\s\\x", "//s/x", "\\\\s\\x/"},
                                    {".\\..//.", "./..//.", ".\\..//./"},
                                    {"\xDC\\\xA5", "\xDC/\xA5", "\xDC\\\xA5/"}};

TEST(ARXFmDir, ChangesSeparatorsOnceAndNothingElse)
{
    for (auto const& [before, expectedNormalised, expectedTerminated] : s_changeCases)
    {
        std::string normalised = before, terminated = before;
        for (int round = 0; round < 2; ++round)
        {
            ARXFmDir::normalizePathSeparator(normalised);
            ARXFmDir::makePathSlashTerminated(terminated);
            EXPECT_EQ(expectedNormalised, normalised);
            EXPECT_EQ(expectedTerminated, terminated);
        }
    }
}

TEST(ARXFmDir, NormalisesPathsAlsoInPlace)
{
    std::pair<char const*, std::vector<std::string>> const rows[] = {
        {"a/b/c", {"a/b/c", "a\\b\\c", "a//b\\c/"}},
        {"/a/b", {"/a/b", "\\a\\b"}},
        {"c:/D/e", {"C:\\D\\e", "c:/D//e\\"}},
        {"c:/", {"C:/", "C:\\", "C:/a/.."}},
        {"c:", {"C:", "C:.", "C:a/..", "C:\\.."}},
        {"c:x", {"C:x"}},
        {"c:..", {"C:.."}},
        {"c:/b", {"C:\\a\\..\\b"}},
        {"/", {"/", "\\", "//", "///", "\\/"}},
        {"/s/x", {"//s/x", "\\\\s\\x"}},
        {"/a", {"///a"}},
        {".", {".", "./", "a/..", "a/b/../..", "\\..", "\\a\\..\\.."}},
        {"..", {"..", "./..", "a/../..", "a/b/../../..", "\\..\\.."}},
        {"../..", {"../.."}},
        {"../b", {"../a/../b"}},
        {"a/b", {"a/./b"}},
        {"a/c", {"a/b/../c/./d/.."}},
        {"y", {"x/./../y"}},
        {"a:b", {"a:b", "A:b"}},
        {"ab:c", {"ab:c"}},
        {"C", {"C"}},
        {"1:/x", {"1:/x"}},
        {"..x/...", {"..x/..."}},
        {"\xC4:/\xFC", {"\xC4:/\xFC\\."}}};
    for (auto const& [result, paths] : rows)
        for (std::string path : paths)
        {
            SCOPED_TRACE(path);
            std::string out = "before";
            ARXFmDir::getNormalizedPath(path, out);
            EXPECT_EQ(result, out);
            ARXFmDir::getNormalizedPath(path, path);  // the second time there is nothing to do
            ARXFmDir::getNormalizedPath(path, path);
            EXPECT_EQ(result, path);
        }
}

// Twice is once, unless a name that looks like a drive prefix has come to stand first.
void expectModelsForm(std::string const& path)
{
    std::string out;
    Lines const failure = raisedBy([&] { ARXFmDir::getNormalizedPath(path, out); });
    ASSERT_EQ(modelNormalizedPath(path), out) << path;
    ASSERT_EQ(failure.empty(), !out.empty()) << path;
    bool const isNewDrive = ARXFmDir::hasDriveLetter(out.c_str()) != ARXFmDir::hasDriveLetter(path.c_str());
    if (failure.empty() && !isNewDrive)
    {
        std::string twice;
        ARXFmDir::getNormalizedPath(out, twice);
        ASSERT_EQ(out, twice) << path;
    }
}

TEST(ARXFmDir, NormalisesEveryShortPathAsTheModelDoes)
{
    std::vector<std::string> paths = {""};  // of one length
    for (int length = 1; length <= 7; ++length)
    {
        std::vector<std::string> longer;
        for (std::string const& path : paths)
            for (char const c : std::string("/\\.aC:"))
                longer.push_back(path + c);
        paths = std::move(longer);
        for (std::string const& path : paths)
            ASSERT_NO_FATAL_FAILURE(expectModelsForm(path));
    }
}

TEST(ARXFmDir, NormalisesALongPathInTimeThatGrowsWithItsLength)
{
    std::string path;
    for (int i = 0; i < 300000; ++i)
        path += "ab\\";
    std::string out;
    ARXFmDir::getNormalizedPath(path + "../x", out);
    EXPECT_EQ(path.size() - 3 + 1, out.size());
    EXPECT_EQ("ab/ab/x", out.substr(out.size() - 7));
}

ThreeTexts const s_absoluteCases[] = {
    {"C:/w", "x/y", "C:/w/x/y"},
    {"C:/w/", "x", "C:/w/x"},
    {"C:/w", "c:x", "C:/w/x"},
    {"c:/w", "C:x\\y", "c:/w/x\\y"},
    {"C:/w", "../x", "C:/w/../x"},
    {"C:/w", "D:/x", "D:/x"},
    {"C:/w", "/x", "/x"},
    {"/w", "\\x", "\\x"},
    {"/w", "x", "/w/x"},
    {"/w", "c:x", "/w/c:x"},
    {"C:/w", "", "C:/w/"},
    {"w\\", "\xE4", "w\\\xE4"},
    {"", "x", "x"},
    {"C:", "c:", "C:/"},
};

TEST(ARXFmDir, PutsRelativePathsUnderTheWorkingDirectory)
{
    for (auto const& [pwd, path, result] : s_absoluteCases)
    {
        std::string out1 = pwd, out2 = path;
        ARXFmDir::getAbsolutePath(out1.c_str(), path, out1);
        ARXFmDir::getAbsolutePath(pwd, out2.c_str(), out2);
        EXPECT_EQ(result, out1) << path << " under " << pwd;
        EXPECT_EQ(result, out2) << path << " under " << pwd;
    }
}

ThreeTexts const s_tailCases[] = {
    {"/a/b", "/a/b/c/d.e", "c/d.e"},
    {"/a/b/", "/a/b/c/d.e", "c/d.e"},
    {"\\a\\b", "/a/b/c", "c"},
    {"C:\\a", "C:/a/b\\c", "b\\c"},
    {"/a/b", "/a/bc/d", "c/d"},
    {"/x/y", "/a/b", "a/b"},
    {"/a/b", "/a/b", ""},
    {"/a/b/", "/a/b/", ""},
    {"/a/b/c", "/a/b", ""},
    {"x", "/a/b", "b"},
    {"C:/A", "c:/a/x", "x"},
    {nullptr, "/a/b", "b"},
    {"", "/a/b", "b"},
    {"", "a\\b", "b"},
    {"", "a/", ""},
    {"\xC3\xA4", "\xC3\xA4/\xC3\xB6", "\xC3\xB6"},
};

TEST(ARXFmDir, CutsTheCommonPrefixOffAFullPath)
{
    for (auto const& [base, fullPath, tail] : s_tailCases)
    {
        std::string out = fullPath;
        ARXFmDir::getPathTail(out, base, out.c_str());
        EXPECT_EQ(tail, out) << fullPath << " behind " << (base ? base : "null");
        out = base ? base : "before";
        ARXFmDir::getPathTail(out, base ? out.c_str() : nullptr, fullPath);
        EXPECT_EQ(tail, out) << fullPath << " behind " << (base ? base : "null");
    }
}

char const s_emptyText[] = "NEB_ASSERT_NAMED(! path.empty(), \"Empty paths are not allowed.\");";
char const s_currentText[] =
    "NEB_ASSERT_NAMED(pwd, \"The current directory cannot be read or is longer than 260 bytes.\");";
char const s_bothText[] = "NEB_ASSERT(path1 && path2);";
char const s_rootText[] = "NEB_ASSERT_NAMED(! isRoot(iter), \"Cannot descend under root with '..'\");";
char const s_driveText[] =
    "NEB_ASSERT_NAMED(pwdDrive == pathDrive, \"Relative path has different drive letter than current "
    "directory.\");";
char const s_nullTailText[] =
    "NEB_ASSERT_NAMED(fullPath, \"ARXFmDir::getPathTail - Null full path parameter is not allowed.\");";
char const s_emptyTailText[] =
    "NEB_ASSERT_NAMED(strlen(fullPath), \"ARXFmDir::getPathTail - empty full path parameter is not "
    "allowed.\");";

std::pair<char const*, void (*)(std::string&)> const s_failureCases[] = {
    {"NEB_ASSERT(path);", [](std::string&) { ARXFmDir::hasDriveLetter(nullptr); }},
    {"NEB_ASSERT(path);", [](std::string&) { ARXFmDir::isAbsolutePath(nullptr); }},
    {s_bothText, [](std::string&) { ARXFmDir::isEquivalentPath(nullptr, "a"); }},
    {s_bothText, [](std::string&) { ARXFmDir::isEquivalentPath("a", nullptr); }},
    {s_bothText, [](std::string&) { ARXFmDir::findDifferentiatingPathOffset(nullptr, "a"); }},
    {s_bothText, [](std::string&) { ARXFmDir::findDifferentiatingPathOffset("a", nullptr); }},
    {s_emptyText, [](std::string& out) { ARXFmDir::getNormalizedPath("", out); }},
    {s_rootText, [](std::string& out) { ARXFmDir::getNormalizedPath("/..", out); }},
    {s_rootText, [](std::string& out) { ARXFmDir::getNormalizedPath("C:/..", out); }},
    {s_rootText, [](std::string& out) { ARXFmDir::getNormalizedPath("/a/../..", out); }},
    {s_rootText, [](std::string& out) { ARXFmDir::getNormalizedPath("/a/b/../../..", out); }},
    {"NEB_ASSERT(pwd);", [](std::string& out) { ARXFmDir::getAbsolutePath(nullptr, nullptr, out); }},
    {"NEB_ASSERT(path);", [](std::string& out) { ARXFmDir::getAbsolutePath("/", nullptr, out); }},
    {"NEB_ASSERT(path);", [](std::string& out) { ARXFmDir::getAbsolutePath(nullptr, out); }},
    {s_driveText, [](std::string& out) { ARXFmDir::getAbsolutePath("C:/w", "D:x", out); }},
    {s_nullTailText, [](std::string& out) { ARXFmDir::getPathTail(out, "/", nullptr); }},
    {s_emptyTailText, [](std::string& out) { ARXFmDir::getPathTail(out, "/", ""); }}};

TEST(ARXFmDir, RefusesMisuseAndLeavesTheOutStringAlone)
{
    for (auto const& [text, call] : s_failureCases)
    {
        std::string out = "before";
        expectAssertion(text, [call = call, &out] { call(out); });
        EXPECT_EQ("before", out);
    }
}

TEST(ARXFmDir, TakesACurrentDirectoryOfAtMost260Bytes)
{
    TemporaryFolder const base;
    for (std::size_t const length : {260u, 261u})
    {
        std::string const path = base / std::string(length - base.path().size() - 1, 'x');
        std::filesystem::create_directory(path);
        CurrentFolder const current(path);
        std::string out = "before";
        auto const call = [&out] { ARXFmDir::getAbsolutePath("a\\b", out); };
        length == 260 ? call() : expectAssertion(s_currentText, call);
        EXPECT_EQ(length == 260 ? path + "/a\\b" : "before", out);
    }
}

TEST(ARXFmDir, CallsOnlyRegularFilesFiles)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "file");
    EXPECT_TRUE(ARXFmDir().isFile((folder.path() + "\\file").c_str()));
    EXPECT_FALSE(ARXFmDir().isFile((folder / "missing").c_str()));
    EXPECT_FALSE(ARXFmDir().isFile(folder.path().c_str()));
    EXPECT_FALSE(ARXFmDir().isFile(nullptr));
}
}  // namespace
