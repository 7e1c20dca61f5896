#include <iterator>
#include <string>
#include <vector>

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
using Names = std::list<std::string>;

Parts split(std::string const& path)
{
    Parts parts;
    ARXFmDirSteps::splitPathIntoParts(path, parts);
    return parts;
}

struct StepCase
{
    char const* m_before;
    char const* m_after;
    char const* m_head;
    char const* m_tail;
};

StepCase const s_stepCases[] = {
    {"a/b/c", "a/b/c", "a/b", "c"}, {"a/b/", "a/b", "a", "b"},   {"a", "a", "", "a"},
    {"/a", "/a", "/", "a"},         {"\\a", "\\a", "\\", "a"},   {"/a/", "/a", "/", "a"},
    {"a//b", "a//b", "a", "b"},     {"//a", "//a", "/", "a"},    {"/", "/", "/", ""},
    {"///", "/", "/", ""},          {"\\/a", "\\/a", "\\", "a"},
};

TEST(ARXFmDirSplit, TakesOneElementFromTheRight)
{
    for (StepCase const& row : s_stepCases)
    {
        SCOPED_TRACE(row.m_before);
        std::string_view path = row.m_before, head = "x", tail = "x";
        ARXFmDirSteps::split(path, head, tail);
        EXPECT_EQ(row.m_after, path);
        EXPECT_EQ(row.m_head, head);
        EXPECT_EQ(row.m_tail, tail);
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

struct SplitCase
{
    char const* m_path;
    char const* m_drive;
    Names m_parts;
};

TEST(ARXFmDirSplit, GivesDriveAndElements)
{
    SplitCase const rows[] = {{"a/b/c", "", {"a", "b", "c"}},
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
    for (SplitCase const& row : rows)
    {
        SCOPED_TRACE(row.m_path);
        Parts const parts = split(row.m_path);
        EXPECT_EQ(row.m_drive, parts.m_drive);
        EXPECT_EQ(row.m_parts, parts.m_parts);
    }
}

TEST(ARXFmDirPathParts, KnowsTheRootAndRemovableParents)
{
    Parts parts = split("/a");
    EXPECT_TRUE(parts.isRoot(parts.m_parts.begin()));
    for (char const* path : {"\\a", "a/b"})
    {
        parts = split(path);
        EXPECT_FALSE(parts.isRoot(parts.m_parts.begin())) << path;
    }

    parts = split("../../a/../..");
    std::vector<bool> removable;
    for (auto iter = parts.m_parts.begin(); iter != parts.m_parts.end(); ++iter)
        removable.push_back(parts.shouldParentDirectoryBeRemoved(iter));
    EXPECT_EQ((std::vector<bool>{false, false, false, true, false}), removable);
    parts = split("/..");
    EXPECT_TRUE(parts.shouldParentDirectoryBeRemoved(std::next(parts.m_parts.begin())));
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

TEST(ARXFmDirPathParts, KeepsWhatWasResolvedBeforeAFailure)
{
    Parts parts = split("/a/../../b");
    EXPECT_THROW(parts.removeParentDir(), NEBAssertError);
    EXPECT_EQ((Names{"/", "..", "b"}), parts.m_parts);
}
}  // namespace
