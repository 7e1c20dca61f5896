#include "zip/ARXUnzipFile.h"

#include <cstdio>
#include <memory>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include "NEBCore/I18NString.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXZipFile.h"
#include "zip/ARXZipInputStream.h"
#include "zip/ZipTools.h"

namespace
{
// Opens up what is for derived classes.
class OpenUnzipFile : public ARXUnzipFile
{
public:
    using ARXUnzipFile::ARXUnzipFile;
    using ARXUnzipFile::getFileInfo;
};

struct MakerCase
{
    char const* m_name;
    char const* m_command;  // packs the folder "tree" into out.zip
    bool m_readable;
};

MakerCase const s_makers[] = {
    {"Zip", "cd tree && zip -r ../out.zip .", true},
    {"ZipFromAPipe", "cd tree && zip -r - . | cat >../out.zip", true},
    {"SevenZip", "7z a -tzip out.zip ./tree/.", true},
    {"Python", "python3 -m zipfile -c out.zip tree/*", true},
    {"Bsdtar", "cd tree && bsdtar -a -cf ../out.zip .", true},
    {"BehindOtherBytes", "cd tree && zip -r x.zip . && (echo front; cat x.zip) >../out.zip && rm x.zip",
     true},
    {"Encrypted", "cd tree && zip -P secret -r ../out.zip .", false},
    {"Bzip2", "7z a -tzip -mm=BZip2 out.zip ./tree/.", false},
    {"Lzma", "7z a -tzip -mm=LZMA out.zip ./tree/.", false},
};

class ARXUnzipFileMakers : public testing::TestWithParam<MakerCase>
{
};

TEST_P(ARXUnzipFileMakers, ComeOutEqualFromFileHandleAndMemory)
{
    TemporaryFolder const folder;
    Tree files = {
        {"a/b/c.txt", "text"}, {"big", noise(200000)}, {"none", ""}, {"zeros", std::string(200000, '\0')}};
    writeTree(folder / "tree", files);
    ASSERT_EQ(0, run(folder / "", GetParam().m_command));
    std::string const path = folder / "out.zip";
    EXPECT_EQ(GetParam().m_readable, ARXUnzipFile::unzip(path.c_str(), (folder / "to").c_str(), false));
    EXPECT_EQ(GetParam().m_readable, readTree(folder / "tree") == readTree(folder / "to"));

    std::string const bytes = readAll(path);
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen(path.c_str(), "rb"), std::fclose);
    ARXZipInputStream streams[] = {ARXZipInputStream(path.c_str()), ARXZipInputStream(file.get()),
                                   ARXZipInputStream(bytes.data(), bytes.size())};
    for (ARXZipInputStream& stream : streams)
    {
        std::size_t found = 0;
        for (auto const& [name, contents] : readStream(stream))
        {
            auto const original = files.find(name.substr(name.rfind("./", 0) == 0 ? 2 : 0));
            found += original != files.end();
            EXPECT_TRUE(original == files.end() || contents == original->second) << name;
        }
        EXPECT_EQ(GetParam().m_readable, found == files.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, ARXUnzipFileMakers, testing::ValuesIn(s_makers),
                         [](auto const& test) { return test.param.m_name; });

struct NameCase
{
    char const* m_name;
    std::string m_entry;
    bool m_ignorePath;
    std::vector<std::string> m_made;  // beside the folder itself; nothing for a name that is refused
};

std::string const s_long = std::string(150, 'd') + "/" + std::string(107, 'f');  // 258 bytes
NameCase const s_names[] = {
    {"Up", "../x", false, {}},
    {"UpByBackslash", "..\\x", false, {}},
    {"UpBehindDown", "a/../../x", false, {}},
    {"UpBehindDots", "./..//x", false, {}},
    {"UpForAFolder", "../d/", false, {}},
    {"UpAlone", "..", false, {}},
    {"UpAsLastElement", "a/..", true, {}},
    {"UpForAFolderIgnored", "../d/", true, {}},
    {"UpIgnored", "../x", true, {"x"}},
    {"UpAndDown", "a/../b", false, {"a/", "b"}},
    {"DotsInFront", "..x", false, {"..x"}},
    {"Absolute", "/x", false, {"x"}},
    {"AbsoluteWindows", "C:\\x", false, {"C:/", "C:/x"}},
    {"DriveAlone", "C:x", false, {"C:x"}},
    {"Backslash", "a\\b.txt", false, {"a/", "a/b.txt"}},
    {"BackslashIgnored", "a\\b.txt", true, {"b.txt"}},
    {"Folder", "a/b/", false, {"a/", "a/b/"}},
    {"FolderIgnored", "a\\b\\", true, {"a/", "a/b/"}},
    {"Name258", s_long, true, {s_long.substr(151)}},
    {"Name259", s_long + "9", true, {s_long.substr(151) + "9"}},
    {"Name260", s_long + "90", true, {}},
    {"Name300", std::string(300, 'n'), false, {}},
};

class ARXUnzipFileName : public testing::TestWithParam<NameCase>
{
};

TEST_P(ARXUnzipFileName, StaysInTheFolderOrIsRefused)
{
    NameCase const& row = GetParam();
    TemporaryFolder const folder;
    makeArchive(folder / "out.zip", {row.m_entry});
    std::string const target = folder / "p/to/";
    EXPECT_EQ(!row.m_made.empty(),
              ARXUnzipFile::unzip((folder / "out.zip").c_str(), target.c_str(), row.m_ignorePath));

    Tree expected = {{"out.zip", readAll(folder / "out.zip")}, {"p/", ""}, {"p/to/", ""}};
    for (std::string const& made : row.m_made)
        expected["p/to/" + made] = made.back() == '/' ? "" : row.m_entry;
    EXPECT_EQ(expected, readTree(folder.path()));
}

INSTANTIATE_TEST_SUITE_P(Rows, ARXUnzipFileName, testing::ValuesIn(s_names),
                         [](auto const& test) { return test.param.m_name; });

void expectClosed(ARXUnzipFile& archive)
{
    EXPECT_EQ(0, archive.getFileCount());
    EXPECT_FALSE(archive.gotoFirstFile() || archive.gotoNextFile() || archive.unzip(false, nullptr));
    EXPECT_TRUE(archive.closeZip());
}

TEST(ARXUnzipFileOpenZip, ClosesWhatWasOpenWhateverComesNext)
{
    TemporaryFolder const folder;
    makeArchive(folder / "out.zip", {"a", "b"});
    writeAll(folder / "text", "no archive");
    std::string const missing = folder / "missing";
    std::string const text = folder / "text";
    for (char const* next : {static_cast<char const*>(nullptr), "", missing.c_str(), text.c_str(), "/"})
    {
        OpenUnzipFile archive((folder / "out.zip").c_str());
        EXPECT_EQ(2, archive.getFileCount());
        EXPECT_FALSE(archive.openZip(next));
        expectClosed(archive);
        ARXUnzipFile::UZ_FileInfo info = {};
        info.crc = 7;
        EXPECT_FALSE(archive.getFileInfo(info));
        EXPECT_EQ(7u, info.crc);
    }
    ARXUnzipFile never(nullptr);
    expectClosed(never);
}

TEST(ARXUnzipFileUnzip, TakesTheArchivesFolderForANullOne)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    makeArchive("out.zip", {"d/a"});
    EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "", false));
    EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "out.zip/in", false));
    EXPECT_TRUE(ARXUnzipFile::unzip("out.zip", nullptr, true));
    EXPECT_EQ((Tree{{"a", "d/a"}, {"out.zip", readAll("out.zip")}}), readTree("."));
}

TEST(ARXUnzipFileUnzip, StopsAtTheFirstBadEntryAndKeepsTheEarlierOnes)
{
    TemporaryFolder const folder;
    makeArchive(folder / "out.zip", {"a", "bad", "c"});
    std::string bytes = readAll(folder / "out.zip");
    bytes[bytes.find("PK\3\4", 1)] = 'x';
    writeAll(folder / "out.zip", bytes);
    ARXUnzipFile archive((folder / "out.zip").c_str());
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_FALSE(archive.unzip(false, (folder / "to").c_str()));
        EXPECT_EQ((Tree{{"a", "a"}, {"bad", ""}}), readTree(folder / "to"));
        EXPECT_TRUE(archive.gotoFirstFile());
    }
    EXPECT_TRUE(archive.closeZip());
}

TEST(ARXUnzipFileUnzip, SetsOnlyTheTimeOfTheLastChange)
{
    TimeZone const zone("IST-5:30");
    TemporaryFolder const folder;
    std::string const target = folder / "a";
    struct
    {
        unsigned m_dosDate;
        std::time_t m_time;  // 0 for no change
    } const rows[] = {{0x5A51B6D4, 1739813080}, {0x5A5DB6D4, 0}, {0, 0}, {0x5A51C6D4, 0}};
    for (auto const& row : rows)
    {
        makeArchive(folder / "out.zip", {"a"});
        unsigned const date = row.m_dosDate;
        char const bytes[] = {static_cast<char>(date), static_cast<char>(date >> 8),
                              static_cast<char>(date >> 16), static_cast<char>(date >> 24)};
        patchDirectory(folder / "out.zip", 12, std::string(bytes, 4));
        writeAll(target, "old");
        timespec const times[] = {{1600000000, 123456789}, {1600000000, 0}};
        ASSERT_EQ(0, utimensat(AT_FDCWD, target.c_str(), times, 0));

        EXPECT_TRUE(ARXUnzipFile::unzip((folder / "out.zip").c_str(), nullptr, false));
        struct stat status;
        ASSERT_EQ(0, stat(target.c_str(), &status));
        EXPECT_EQ(1600000000, status.st_atim.tv_sec);
        EXPECT_EQ(123456789, status.st_atim.tv_nsec);
        if (row.m_time != 0)
            EXPECT_EQ(row.m_time, status.st_mtime);
        else
            EXPECT_LT(1700000000, status.st_mtime);  // of the writing itself
    }
}

TEST(ARXUnzipFileGetFileInfo, CopiesAllAndCutsTheComment)
{
    TemporaryFolder const folder;
    for (std::size_t length : {0, 255, 256, 300})
    {
        std::string const comment(length, 'c');
        I18NString const text(comment.c_str());
        unsigned char bytes[] = "12345";
        ARXZipFile writer;
        writer.create((folder / "out.zip").c_str());
        writer.openNewFileInZip("f", nullptr, &text, ARXZipFile::compressDeflated, 9);
        writer.writeInFileInZip(bytes, 5);
        writer.close();
        patchDirectory(folder / "out.zip", 4, std::string("\x15\x03", 2));
        patchDirectory(folder / "out.zip", 36, std::string("\x01\x02\x13\x04\x05\x06", 6));

        OpenUnzipFile archive((folder / "out.zip").c_str());
        ARXUnzipFile::UZ_FileInfo info;
        ASSERT_TRUE(archive.getFileInfo(info));
        EXPECT_STREQ("f", info.szFileName);
        EXPECT_EQ(comment.substr(0, 255), info.szComment);
        EXPECT_EQ(7u, info.compressedSize);
        EXPECT_EQ(5u, info.uncompressedSize);
        EXPECT_EQ(0xcbf53a1cu, info.crc);
        EXPECT_EQ(8u, info.compressionMethod);
        EXPECT_EQ(0x0315u, info.version);
        EXPECT_EQ(0x0201u, info.internalAttributes);
        EXPECT_EQ(0x06050413u, info.externalAttributes);
        EXPECT_FALSE(info.isFolder);  // the attribute of DOS says nothing here
    }
}

TEST(ARXUnzipFileGotoNextFile, ReachesBeyondTheCountOf16Bits)
{
    TemporaryFolder const folder;
    makeArchive(folder / "out.zip", std::vector<std::string>(70000, "n"));
    ARXUnzipFile archive((folder / "out.zip").c_str());
    EXPECT_EQ(65535, archive.getFileCount());
    int count = 1;
    while (archive.gotoNextFile())
        ++count;
    EXPECT_EQ(70000, count);
}
}  // namespace
