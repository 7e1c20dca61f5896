#include "zip/ARXUnzipFile.h"

#include "zip/ZipTools.h"

namespace
{
// Opens up what is for derived classes.
struct OpenUnzipFile : ARXUnzipFile
{
    using ARXUnzipFile::ARXUnzipFile;
    using ARXUnzipFile::getFileInfo;
};

struct NameRow
{
    char const* m_name;
    std::string m_entry;
    bool m_ignorePath;
    Names m_made;  // in the target folder; nothing if the name is refused
};
struct NameOfAnEntry : ZipTest, testing::WithParamInterface<NameRow>
{
};

TEST_P(NameOfAnEntry, StaysInTheFolderOrIsRefused)
{
    makeArchive({GetParam().m_entry});
    bool const isExtracted = ARXUnzipFile::unzip("out.zip", "p/to/", GetParam().m_ignorePath);
    EXPECT_EQ(!GetParam().m_made.empty(), isExtracted);
    Tree expected = {{"out.zip", readAll("out.zip")}, {"p/", ""}, {"p/to/", ""}};
    for (std::string const& name : GetParam().m_made)
        expected["p/to/" + name] = name.back() == '/' ? "" : GetParam().m_entry;
    EXPECT_EQ(expected, readTree("."));
}

std::string const s_folder(150, 'd');
std::string const s_longest = s_folder + "/" + std::string(108, 'f');  // 259 bytes

NameRow const s_names[] = {
    {"Climbs", "../x", false, {}},
    {"TailIsTheParent", "a/..", true, {}},
    {"FolderThatClimbsKeepsItsPath", "../d/", true, {}},
    {"ClimbsUntilItsPathIsDropped", "../x", true, {"x"}},
    {"ClimbsInside", "a/../b", false, {"a/", "b"}},
    {"TwoDotsBeginAName", "..x", false, {"..x"}},
    {"Absolute", "/x", false, {"x"}},
    {"Drive", "C:x", false, {"C:x"}},
    {"Backslash", "a\\b", false, {"a/", "a/b"}},
    {"BackslashDropped", "a\\b", true, {"b"}},
    {"FolderByBackslash", "a\\b\\", true, {"a/", "a/b/"}},
    {"Longest", s_longest, false, {s_folder + "/", s_longest}},
    {"TooLong", s_longest + "f", false, {}},
};
INSTANTIATE_TEST_SUITE_P(Names, NameOfAnEntry, testing::ValuesIn(s_names), RowName());

using ARXUnzipFileTest = ZipTest;

struct UnreadableRow
{
    char const* m_name;
    std::size_t m_offset;
    std::string m_patch;
};

// minizip would read these as raw bytes.
TEST_F(ARXUnzipFileTest, RefusesEntriesThatItCantRead)
{
    UnreadableRow const rows[] = {{"Encrypted", 8, "\x01"},
                                  {"PatchData", 8, "\x20"},
                                  {"StronglyEncrypted", 8, "\x40"},
                                  {"MaskedDirectory", 8, "\x02\x20"},
                                  {"ForeignMethod", 10, "\x0C"}};
    for (UnreadableRow const& row : rows)
    {
        makeArchive({"a"}, {{row.m_offset, row.m_patch}});
        EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "to", false)) << row.m_name;
        EXPECT_FALSE(ARXZipInputStream("out.zip").openCurrentEntry()) << row.m_name;
    }
}

// Into the archive's own folder, since none is given.
TEST_F(ARXUnzipFileTest, StopsAtTheFirstBadEntry)
{
    makeArchive({"d/a", "bad", "c"});
    std::string bytes = readAll("out.zip");
    bytes[bytes.find("PK\3\4", 1)] = 'x';
    writeTree({{"out.zip", bytes}});
    ARXUnzipFile archive("out.zip");
    for (int round = 0; round < 2; ++round)  // it stays usable
        EXPECT_FALSE(archive.unzip(true, nullptr));
    EXPECT_EQ((Tree{{"a", "d/a"}, {"bad", ""}, {"out.zip", bytes}}), readTree("."));
}

TEST_F(ARXUnzipFileTest, RefusesATargetThatIsNoFolder)
{
    makeArchive({"a"});
    EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "", false));
    EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "out.zip/x", false));
}

TEST_F(ARXUnzipFileTest, NoEntryReplacesTheArchiveItself)
{
    std::filesystem::create_symlink("out.zip", "link");
    for (char const* entry : {".\\out.zip", "link"})
    {
        makeArchive({entry});
        std::string const bytes = readAll("out.zip");
        EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", nullptr, false)) << entry;
        EXPECT_EQ(bytes, readAll("out.zip")) << entry;
    }
}

TEST_F(ARXUnzipFileTest, ADescriptionCutsTheComment)
{
    I18NString const comment(std::string(256, 'c').c_str());
    makeArchive({"a"}, {}, &comment);
    ARXUnzipFile::UZ_FileInfo info;
    ASSERT_TRUE(OpenUnzipFile("out.zip").getFileInfo(info));
    EXPECT_EQ(std::string(255, 'c'), info.szComment);
}

struct MarkRow
{
    char const* m_name;
    Patches m_patches;
    bool m_isFolder;
};

TEST_F(ARXUnzipFileTest, DosMarksFoldersWithoutContents)
{
    std::string const size0(4, '\0'), folder = "\x10", byUnix = "\x14\3";
    MarkRow const rows[] = {{"Folder", {{24, size0}, {38, folder}}, true},
                            {"WithContents", {{38, folder}}, false},
                            {"EmptyFile", {{24, size0}}, false},
                            {"ByUnix", {{4, byUnix}, {24, size0}, {38, folder}}, false}};
    for (MarkRow const& row : rows)
    {
        makeArchive({"a"}, row.m_patches);
        EXPECT_TRUE(ARXUnzipFile::unzip("out.zip", row.m_name, false));
        EXPECT_EQ(row.m_isFolder, std::filesystem::is_directory(row.m_name + std::string("/a")))
            << row.m_name;
    }
}
}  // namespace
