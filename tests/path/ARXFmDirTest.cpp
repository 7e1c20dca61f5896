#include "path/ARXFmDir.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "support/ExpectAssertion.h"
#include "support/TemporaryFolder.h"

namespace
{
struct KindCase
{
    char const* m_path;
    bool m_hasDrive, m_isAbsolute;
};

KindCase const s_kindCases[] = {
    {"", false, false},    {"C", false, false},       {"C:", true, false},      {"C:x", true, false},
    {"c:x", true, false},  {"a:b", true, false},      {"ab:c", false, false},   {"x/y", false, false},
    {"./x", false, false}, {"1:/x", false, false},    {":/", false, false},     {"[:/", false, false},
    {"@:/", false, false}, {"\xE4:/x", false, false}, {"C:/", true, true},      {"z:/", true, true},
    {"c:\\x", true, true}, {"/", false, true},        {"\\", false, true},      {"/x", false, true},
    {"\\x", false, true},  {"//s/x", false, true},    {"\\\\s\\x", false, true}};

TEST(ARXFmDir, TellsDriveAndAbsolutePathsByTheFirstBytes)
{
    for (KindCase const& row : s_kindCases)
    {
        EXPECT_EQ(row.m_hasDrive, ARXFmDir::hasDriveLetter(row.m_path)) << row.m_path;
        EXPECT_EQ(row.m_isAbsolute, ARXFmDir::isAbsolutePath(row.m_path)) << row.m_path;
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

struct CompareCase
{
    char const* m_path1;
    char const* m_path2;
    bool m_isEquivalent;
    std::uint64_t m_offset;
};

CompareCase const s_compareCases[] = {
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
    for (CompareCase const& row : s_compareCases)
    {
        SCOPED_TRACE(std::string(row.m_path1) + " against " + row.m_path2);
        EXPECT_EQ(row.m_isEquivalent, ARXFmDir::isEquivalentPath(row.m_path1, row.m_path2));
        EXPECT_EQ(row.m_isEquivalent, ARXFmDir::isEquivalentPath(row.m_path2, row.m_path1));
        EXPECT_EQ(row.m_offset, ARXFmDir::findDifferentiatingPathOffset(row.m_path1, row.m_path2));
        EXPECT_EQ(row.m_offset, ARXFmDir::findDifferentiatingPathOffset(row.m_path2, row.m_path1));
    }
}

struct ChangeCase
{
    char const* m_before;
    char const* m_after;
};

// The change must also be its own end: a second one finds nothing to do.
template <class Change, std::size_t Count>
void expectChanges(ChangeCase const (&rows)[Count], Change const& change)
{
    for (ChangeCase const& row : rows)
    {
        std::string path = row.m_before;
        change(path);
        EXPECT_EQ(row.m_after, path) << row.m_before;
        change(path);
        EXPECT_EQ(row.m_after, path) << row.m_before << " a second time";
    }
}

TEST(ARXFmDir, NormalisesSeparatorsAndNothingElse)
{
    ChangeCase const rows[] = {{"", ""},
                               {"a\\b/c\\", "a/b/c/"},
                               {"\\\\s\\x", "//s/x"},
                               {".\\..//", "./..//"},
                               {"\xDC\\\xA5", "\xDC/\xA5"}};
    expectChanges(rows, [](std::string& path) { ARXFmDir::normalizePathSeparator(path); });
}

TEST(ARXFmDir, EndsDirectoriesInASeparatorOnce)
{
    ChangeCase const rows[] = {{"", ""},     {"a", "a/"},    {"a\\b", "a\\b/"},
                               {"a/", "a/"}, {"a\\", "a\\"}, {"C:", "C:/"}};
    expectChanges(rows, [](std::string& path) { ARXFmDir::makePathSlashTerminated(path); });
}

ChangeCase const s_normalCases[] = {
    {"a/b/c", "a/b/c"},
    {"a\\b\\c", "a/b/c"},
    {"a//b\\c/", "a/b/c"},
    {"/a/b", "/a/b"},
    {"\\a\\b", "/a/b"},
    {"C:\\D\\e", "c:/D/e"},
    {"c:/D//e\\", "c:/D/e"},
    {"C:/", "c:/"},
    {"C:\\", "c:/"},
    {"C:", "c:"},
    {"C:x", "c:x"},
    {"C:.", "c:"},
    {"C:..", "c:.."},
    {"C:a/..", "c:"},
    {"C:/a/..", "c:/"},
    {"C:\\a\\..\\b", "c:/b"},
    {"/", "/"},
    {"\\", "/"},
    {"//", "/"},
    {"///", "/"},
    {"\\/", "/"},
    {"//s/x", "/s/x"},
    {"\\\\s\\x", "/s/x"},
    {"///a", "/a"},
    {".", "."},
    {"./", "."},
    {"a/..", "."},
    {"a/b/../..", "."},
    {"..", ".."},
    {"./..", ".."},
    {"a/../..", ".."},
    {"a/b/../../..", ".."},
    {"../..", "../.."},
    {"../a/../b", "../b"},
    {"a/./b", "a/b"},
    {"a/b/../c/./d/..", "a/c"},
    {"x/./../y", "y"},
    {"a:b", "a:b"},
    {"ab:c", "ab:c"},
    {"C", "C"},
    {"1:/x", "1:/x"},
    {"..x/...", "..x/..."},
    // A root spelled \ has no protection.
    {"\\..", "."},
    {"\\a\\..\\..", "."},
    {"\\..\\..", ".."},
    {"C:\\..", "c:"},
    {"\xC4:/\xFC\\.", "\xC4:/\xFC"},
};

TEST(ARXFmDir, NormalisesPathsAlsoInPlace)
{
    expectChanges(s_normalCases, [](std::string& path) { ARXFmDir::getNormalizedPath(path, path); });
    for (ChangeCase const& row : s_normalCases)
    {
        std::string out = "before";
        ARXFmDir::getNormalizedPath(row.m_before, out);
        EXPECT_EQ(row.m_after, out) << row.m_before;
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

struct AbsoluteCase
{
    char const* m_pwd;
    char const* m_path;
    char const* m_out;
};

AbsoluteCase const s_absoluteCases[] = {
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
    for (AbsoluteCase const& row : s_absoluteCases)
    {
        SCOPED_TRACE(std::string(row.m_path) + " under " + row.m_pwd);
        std::string out = "before";
        ARXFmDir::getAbsolutePath(row.m_pwd, row.m_path, out);
        EXPECT_EQ(row.m_out, out);
        out = row.m_pwd;
        ARXFmDir::getAbsolutePath(out.c_str(), row.m_path, out);
        EXPECT_EQ(row.m_out, out);
        out = row.m_path;
        ARXFmDir::getAbsolutePath(row.m_pwd, out.c_str(), out);
        EXPECT_EQ(row.m_out, out);
    }
}

struct TailCase
{
    char const* m_base;
    char const* m_fullPath;
    char const* m_tail;
};

TailCase const s_tailCases[] = {
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
    for (TailCase const& row : s_tailCases)
    {
        SCOPED_TRACE(std::string(row.m_fullPath) + " behind " + (row.m_base ? row.m_base : "null"));
        std::string out = "before";
        ARXFmDir::getPathTail(out, row.m_base, row.m_fullPath);
        EXPECT_EQ(row.m_tail, out);
        out = row.m_fullPath;
        ARXFmDir::getPathTail(out, row.m_base, out.c_str());
        EXPECT_EQ(row.m_tail, out);
    }
}

char const s_emptyText[] = "NEB_ASSERT_NAMED(! path.empty(), \"Empty paths are not allowed.\");";
char const s_rootText[] = "NEB_ASSERT_NAMED(! isRoot(iter), \"Cannot descend under root with '..'\");";
char const s_driveText[] =
    "NEB_ASSERT_NAMED(pwdDrive == pathDrive, \"Relative path has different drive letter than current "
    "directory.\");";
char const s_nullTailText[] =
    "NEB_ASSERT_NAMED(fullPath, \"ARXFmDir::getPathTail - Null full path parameter is not allowed.\");";
char const s_emptyTailText[] =
    "NEB_ASSERT_NAMED(strlen(fullPath), \"ARXFmDir::getPathTail - empty full path parameter is not "
    "allowed.\");";

struct FailureCase
{
    char const* m_text;
    void (*m_call)(std::string& out);
};

FailureCase const s_failureCases[] = {
    {"NEB_ASSERT(path);", [](std::string&) { ARXFmDir::hasDriveLetter(nullptr); }},
    {"NEB_ASSERT(path);", [](std::string&) { ARXFmDir::isAbsolutePath(nullptr); }},
    {"NEB_ASSERT(path1 && path2);", [](std::string&) { ARXFmDir::isEquivalentPath(nullptr, "a"); }},
    {"NEB_ASSERT(path1 && path2);", [](std::string&) { ARXFmDir::isEquivalentPath("a", nullptr); }},
    {"NEB_ASSERT(path1 && path2);",
     [](std::string&) { ARXFmDir::findDifferentiatingPathOffset(nullptr, "a"); }},
    {"NEB_ASSERT(path1 && path2);",
     [](std::string&) { ARXFmDir::findDifferentiatingPathOffset("a", nullptr); }},
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
    for (FailureCase const& row : s_failureCases)
    {
        std::string out = "before";
        expectAssertion(row.m_text, [&] { row.m_call(out); });
        EXPECT_EQ("before", out);
    }
}

// The folder at a path of exactly that many bytes, the longest folder name being 255.
std::string makeFolderOfLength(TemporaryFolder const& base, std::size_t length)
{
    std::string const path = base / std::string(length - base.path().size() - 1, 'x');
    std::filesystem::create_directory(path);
    return path;
}

TEST(ARXFmDir, TakesACurrentDirectoryOfAtMost260Bytes)
{
    TemporaryFolder const base;
    std::string const longest = makeFolderOfLength(base, 260);
    std::string out;
    {
        CurrentFolder const current(longest);
        ARXFmDir::getAbsolutePath("a\\b", out);
        EXPECT_EQ(longest + "/a\\b", out);
    }
    CurrentFolder const current(makeFolderOfLength(base, 261));
    expectAssertion(
        "NEB_ASSERT_NAMED(pwd, \"The current directory cannot be read or is longer than 260 bytes.\");",
        [&] { ARXFmDir::getAbsolutePath("a", out); });
    EXPECT_EQ(longest + "/a\\b", out);
}

TEST(ARXFmDir, CallsOnlyRegularFilesFiles)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "file");
    ARXFmDir const dir;
    EXPECT_TRUE(dir.isFile((folder / "file").c_str()));
    EXPECT_TRUE(dir.isFile((folder.path() + "\\file").c_str()));
    EXPECT_FALSE(dir.isFile((folder / "missing").c_str()));
    EXPECT_FALSE(dir.isFile(folder.path().c_str()));
    EXPECT_FALSE(dir.isFile(nullptr));
}
}  // namespace
