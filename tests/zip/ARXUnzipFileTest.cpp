#include "zip/ARXUnzipFile.h"

#include <random>

#include <sys/stat.h>

#include "zip/ZipTools.h"

namespace
{
// Opens up what is for derived classes.
struct OpenUnzipFile : ARXUnzipFile
{
    using ARXUnzipFile::ARXUnzipFile;
    using ARXUnzipFile::getFileInfo;
};

using ARXUnzipFileTest = ZipTest;

// An empty file, a deep one, one that packs well and one that doesn't.
Tree makeFiles()
{
    std::string noise(300000, '\0');
    std::generate(noise.begin(), noise.end(), std::mt19937(1));
    return {{"a/b/c", "text"}, {"none", ""}, {"zeros", std::string(300000, '\0')}, {"noise", noise}};
}

struct ToolRow
{
    char const* m_name;
    char const* m_pack;  // makes out.zip of the folder t
    bool m_isReadable;
};
struct ArchiveOfATool : ZipTest, testing::WithParamInterface<ToolRow>
{
};

TEST_P(ArchiveOfATool, ReadsAlikeFromEverySource)
{
    Tree const files = makeFiles();
    writeTree(files, "t");
    ASSERT_TRUE(run(GetParam().m_pack));
    bool const isReadable = GetParam().m_isReadable;
    EXPECT_EQ(isReadable, ARXUnzipFile::unzip("out.zip", "to", false));
    EXPECT_EQ(isReadable, readTree("t") == readTree("to"));
    std::string const bytes = readAll("out.zip");
    FilePtr const file(std::fopen("out.zip", "rb"), std::fclose);
    EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream("out.zip")));
    EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream(file.get())));
    EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream(bytes.data(), bytes.size())));
}

ToolRow const s_tools[] = {
    {"Zip", "cd t && zip -r ../out.zip .", true},
    {"ZipToAPipeAfterOtherBytes", "cd t && (echo front; zip -r - . | cat) >../out.zip", true},
    {"Bsdtar", "cd t && bsdtar -a -cf ../out.zip .", true},
    {"Encrypted", "cd t && zip -0 -P secret -r ../out.zip .", false},
    {"ForeignMethod", "7z a -tzip -mm=BZip2 out.zip ./t/.", false},
};
INSTANTIATE_TEST_SUITE_P(Tools, ArchiveOfATool, testing::ValuesIn(s_tools), RowName());

TEST_F(ARXUnzipFileTest, OtherToolsExtractOurArchives)
{
    writeTree(makeFiles(), "t");
    ARXZipFile archive;
    archive.create("out.zip");
    archive.addDirectory("t", nullptr, true, true);
    archive.close();
    for (char const* reader : {"unzip -t out.zip && unzip out.zip -d a", "7z t out.zip && 7z x -oa out.zip",
                               "mkdir a && bsdtar -xf out.zip -C a", "python3 -m zipfile -e out.zip a"})
    {
        SCOPED_TRACE(reader);
        EXPECT_TRUE(run(reader));
        EXPECT_TRUE(readTree("t") == readTree("a"));
        std::filesystem::remove_all("a");
    }
}

struct NameRow
{
    char const* m_name;
    char const* m_entry;
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

NameRow const s_names[] = {
    {"Climbs", "../x", false, {}},
    {"ClimbsByBackslash", "..\\x", false, {}},
    {"ClimbsLate", "a/../../x", false, {}},
    {"FolderThatClimbs", "../d/", false, {}},
    {"TailIsTheParent", "a/..", true, {}},
    {"FolderThatClimbsKeepsItsPath", "../d/", true, {}},
    {"ClimbsUntilItsPathIsDropped", "../x", true, {"x"}},
    {"ClimbsInside", "a/../b", false, {"a/", "b"}},
    {"TwoDotsBeginAName", "..x", false, {"..x"}},
    {"Absolute", "/x", false, {"x"}},
    {"Drive", "C:x", false, {"C:x"}},
    {"Backslash", "a\\b", false, {"a/", "a/b"}},
    {"BackslashDropped", "a\\b", true, {"b"}},
    {"Folder", "a/b/", false, {"a/", "a/b/"}},
    {"FolderByBackslash", "a\\b\\", true, {"a/", "a/b/"}},
};
INSTANTIATE_TEST_SUITE_P(Names, NameOfAnEntry, testing::ValuesIn(s_names), RowName());

TEST_F(ARXUnzipFileTest, TheLongestNameHas259Bytes)
{
    for (std::size_t const length : {259u, 260u})
    {
        makeArchive({std::string(150, 'd') + "/" + std::string(length - 151, 'f')});
        EXPECT_EQ(length == 259, ARXUnzipFile::unzip("out.zip", "to", false)) << length;
    }
}

TEST_F(ARXUnzipFileTest, OpeningClosesWhatWasOpen)
{
    makeArchive({"a", "b"});
    for (char const* next : {static_cast<char const*>(nullptr), "", "missing", "/dev/null", "/"})
    {
        OpenUnzipFile archive("out.zip");
        ARXUnzipFile::UZ_FileInfo info;
        EXPECT_EQ(2, archive.getFileCount());
        EXPECT_FALSE(archive.openZip(next) || archive.gotoFirstFile() || archive.gotoNextFile() ||
                     archive.unzip(false, nullptr) || archive.getFileInfo(info) || archive.getFileCount());
        EXPECT_TRUE(archive.closeZip());
    }
}

// Into the archive's own folder, since none is given.
TEST_F(ARXUnzipFileTest, StopsAtTheFirstBadEntryAndKeepsTheEarlierOnes)
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

// Patch data, strong encryption, masked directory: minizip would give raw bytes.
TEST_F(ARXUnzipFileTest, RefusesFlagsThatItCantRead)
{
    for (char const* flags : {"\x20", "\x40", "\x02\x20"})
    {
        makeArchive({"a"}, {{8, flags}});
        EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "to", false));
    }
}

TEST_F(ARXUnzipFileTest, NoEntryReplacesTheArchiveItself)
{
    for (char const* entry : {"out.zip", ".\\out.zip", "link"})
    {
        SCOPED_TRACE(entry);
        std::filesystem::create_directory("z");
        CurrentFolder const current("z");
        makeArchive({"a", entry});
        std::filesystem::remove("link");
        std::filesystem::create_symlink("out.zip", "link");
        std::string const bytes = readAll("out.zip");
        EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", nullptr, false));
        EXPECT_EQ(bytes, readAll("out.zip"));
    }
}

TEST_F(ARXUnzipFileTest, AFileThatIsNotWholeGetsNoDate)
{
    makeArchive({"f"}, {{10, std::string("\x08", 1)}, {12, "\x6A\x1D\x6F\x57"}});
    std::string bytes = readAll("out.zip");
    bytes.replace(8, 1, "\x08");  // deflated, in the entry's own header as well, but "f" is no deflate
    writeTree({{"out.zip", bytes}});
    EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", nullptr, false));
    struct stat status;
    ASSERT_EQ(0, stat("f", &status));
    EXPECT_EQ(status.st_ctime, status.st_mtime);
}

TEST_F(ARXUnzipFileTest, ADescriptionHoldsTheNumbersAndCutsTheComment)
{
    for (std::size_t const length : {0u, 255u, 256u, 300u})
    {
        I18NString const comment(std::string(length, 'c').c_str());
        makeArchive({"12345"}, {{38, "\x13\4\5\6"}}, &comment);
        OpenUnzipFile archive("out.zip");
        ARXUnzipFile::UZ_FileInfo info;
        ASSERT_TRUE(archive.getFileInfo(info));
        EXPECT_EQ(std::string(std::min<std::size_t>(length, 255), 'c'), info.szComment);
        EXPECT_EQ(0xcbf53a1c, info.crc);
        EXPECT_EQ(0x06050413u, info.externalAttributes);
        EXPECT_FALSE(info.isFolder);  // DOS marks it so, but it has contents
    }
}
}  // namespace
