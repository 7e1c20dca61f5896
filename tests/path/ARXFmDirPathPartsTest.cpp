#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "path/ARXFmDir.h"
#include "support/ExpectAssertion.h"

// Befriended by ARXFmDir.
class ARXFmDirSteps : public ARXFmDir
{
public:
    using ARXFmDir::splitPathIntoParts;

    static void split(std::string_view& path, std::string_view& head, std::string_view& tail)
    {
        mySplitPath(path, head, tail);
    }
    static void removeTrailing(std::string_view& path) { removeTrailingDirectorySeparator(path); }
};

namespace
{
using Parts = ARXFmDir::ARXFmDirPathParts;

Parts split(std::string const& path)
{
    Parts parts;
    ARXFmDirSteps::splitPathIntoParts(path, parts);
    return parts;
}

TEST(ARXFmDirSplit, TakesOneElementFromTheRight)
{
    std::tuple<char const*, char const*, char const*, char const*> const rows[] = {
        {"a/b/c", "a/b/c", "a/b", "c"}, {"a/b/", "a/b", "a", "b"},  {"a", "a", "", "a"},
        {"/a", "/a", "/", "a"},         {"\\a", "\\a", "\\", "a"},  {"/a/", "/a", "/", "a"},
        {"a//b", "a//b", "a", "b"},     {"//a", "//a", "/", "a"},   {"/", "/", "/", ""},
        {"///", "/", "/", ""},          {"\\/a", "\\/a", "\\", "a"}};
    for (auto const& [before, after, expectedHead, expectedTail] : rows)
    {
        std::string_view path = before, head = "x", tail = "x";
        ARXFmDirSteps::split(path, head, tail);
        EXPECT_EQ(std::tie(after, expectedHead, expectedTail), std::tie(path, head, tail)) << before;
    }
}

TEST(ARXFmDirSplit, RefusesEmptyPathsAtEachStep)
{
    char const text[] = "NEB_ASSERT_NAMED(!path.empty(), \"Path may not be empty.\");";
    std::string_view path, head, tail;
    expectAssertion(text, [&] { ARXFmDirSteps::split(path, head, tail); });
    expectAssertion(text, [&] { ARXFmDirSteps::removeTrailing(path); });
    expectAssertion(text, [&] { split(""); });
}

TEST(ARXFmDirSplit, GivesDriveAndElementsAndKnowsTheRoot)
{
    std::tuple<char const*, char const*, std::list<std::string>> const rows[] = {
        {"a/b/c", "", {"a", "b", "c"}},
        {"/a/b", "", {"/", "a", "b"}},
        {"\\a\\b", "", {"\\", "a", "b"}},
        {"C:\\D\\e", "c:", {"\\", "D", "e"}},
        {"C:x", "c:", {"x"}},
        {"C:/", "c:", {"/"}},
        {"C:", "c:", {}},
        {"//s/x", "", {"/", "s", "x"}},
        {"\\\\s\\x", "", {"\\", "s", "x"}},
        {"a//b/", "", {"a", "b"}},
        {"\xC4:\\..\\.", "", {"\xC4:", "..", "."}}};
    for (auto const& [path, drive, elements] : rows)
    {
        Parts parts = split(path);
        EXPECT_EQ(drive, parts.m_drive) << path;
        EXPECT_EQ(elements, parts.m_parts) << path;
        for (auto iter = parts.m_parts.begin(); iter != parts.m_parts.end(); ++iter)
            EXPECT_EQ(*iter == "/", parts.isRoot(iter)) << path;
    }
}

TEST(ARXFmDirPathParts, HasNothingToDoWhileEmpty)
{
    Parts parts;
    parts.removeCurrentDir();
    parts.removeParentDir();
    std::string out = "before";
    parts.getPath(out);
    EXPECT_EQ("", out);
}
}  // namespace
