#include "zip/ARXUnzipFile.h"

#include <memory>
#include <sstream>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include "NEBCore/I18NString.h"
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

class ARXUnzipFileTest : public testing::Test
{
protected:
    TemporaryFolder m_folder;
    CurrentFolder m_current{m_folder.path()};
};

struct MakerCase
{
    char const* m_command;  // packs the folder t into out.zip
    bool m_isReadable;
};

MakerCase const s_makers[] = {
    {"cd t && zip -r ../out.zip .", true},
    {"cd t && zip -r - . | cat >../out.zip", true},
    {"7z a -tzip out.zip ./t/.", true},
    {"python3 -m zipfile -c out.zip t/*", true},
    {"cd t && bsdtar -a -cf ../out.zip .", true},
    {"cd t && (echo front; zip -r - . | cat) >../out.zip", true},
    {"cd t && zip -P secret -r ../out.zip .", false},
    {"7z a -tzip -mm=BZip2 out.zip ./t/.", false},
    {"7z a -tzip -mm=LZMA out.zip ./t/.", false},
};

TEST_F(ARXUnzipFileTest, ArchivesOfOtherToolsComeOutEqualFromFileHandleAndMemory)
{
    writeTree("t", {{"a/b/c", "text"}, {"none", ""}});
    ASSERT_TRUE(run("t", "head -c 200000 /dev/urandom >noise; head -c 200000 /dev/zero >zeros"));
    Tree files = readTree("t");
    for (MakerCase const& row : s_makers)
    {
        SCOPED_TRACE(row.m_command);
        std::filesystem::remove_all("to");
        std::filesystem::remove("out.zip");
        ASSERT_TRUE(run(".", row.m_command));
        EXPECT_EQ(row.m_isReadable, ARXUnzipFile::unzip("out.zip", "to", false));
        EXPECT_EQ(row.m_isReadable, readTree("t") == readTree("to"));

        std::string const bytes = readAll("out.zip");
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> const handle(std::fopen("out.zip", "rb"),
                                                                     std::fclose);
        for (Tree const& tree :
             {readStream(ARXZipInputStream("out.zip")), readStream(ARXZipInputStream(handle.get())),
              readStream(ARXZipInputStream(bytes.data(), bytes.size()))})
        {
            std::size_t found = 0;
            for (auto const& [name, contents] : tree)
            {
                std::string const plain = name.substr(name.rfind("./", 0) == 0 ? 2 : 0);
                found += name.back() != '/';
                EXPECT_TRUE(name.back() == '/' || files[plain] == contents) << name;
            }
            EXPECT_EQ(row.m_isReadable, found == 4);
        }
    }
}

struct NameCase
{
    char const* m_entry;
    bool m_ignorePath;
    char const* m_made;  // beside the folder itself; nothing for a name that is refused
};

NameCase const s_names[] = {
    {"../x", false, ""},          {"..\\x", false, ""},       {"a/../../x", false, ""},
    {"./..//x", false, ""},       {"../d/", false, ""},       {"..", false, ""},
    {"a/..", true, ""},           {"../d/", true, ""},        {"../x", true, "x"},
    {"a/../b", false, "a/ b"},    {"..x", false, "..x"},      {"/x", false, "x"},
    {"C:\\x", false, "C:/ C:/x"}, {"C:x", false, "C:x"},      {"a\\b", false, "a/ a/b"},
    {"a\\b", true, "b"},          {"a/b/", false, "a/ a/b/"}, {"a\\b\\", true, "a/ a/b/"}};

TEST_F(ARXUnzipFileTest, NamesStayInTheFolderOrAreRefused)
{
    for (NameCase const& row : s_names)
    {
        SCOPED_TRACE(row.m_entry);
        std::filesystem::remove_all("p");
        makeArchive("out.zip", {row.m_entry});
        EXPECT_EQ(*row.m_made != '\0', ARXUnzipFile::unzip("out.zip", "p/to/", row.m_ignorePath));
        Tree expected = {{"out.zip", readAll("out.zip")}, {"p/", ""}, {"p/to/", ""}};
        std::istringstream made(row.m_made);
        for (std::string name; made >> name;)
            expected["p/to/" + name] = name.back() == '/' ? "" : row.m_entry;
        EXPECT_EQ(expected, readTree("."));
    }
    for (std::size_t length : {258u, 259u, 260u, 300u})
    {
        makeArchive("out.zip", {std::string(150, 'd') + "/" + std::string(length - 151, 'f')});
        EXPECT_EQ(length < 260, ARXUnzipFile::unzip("out.zip", std::to_string(length).c_str(), false));
    }
}

TEST_F(ARXUnzipFileTest, OpeningClosesWhatWasOpenWhateverComesNext)
{
    makeArchive("out.zip", {"a", "b"});
    writeTree(".", {{"text", "no archive"}});
    for (char const* next : {static_cast<char const*>(nullptr), "", "missing", "text", "/"})
    {
        OpenUnzipFile archive("out.zip");
        EXPECT_EQ(2, archive.getFileCount());
        EXPECT_FALSE(archive.openZip(next));
        ARXUnzipFile::UZ_FileInfo info;
        EXPECT_FALSE(archive.gotoFirstFile() || archive.gotoNextFile() || archive.unzip(false, nullptr) ||
                     archive.getFileInfo(info) || archive.getFileCount() != 0);
        EXPECT_TRUE(archive.closeZip());
    }
}

TEST_F(ARXUnzipFileTest, ANullFolderIsTheArchivesOwn)
{
    makeArchive("out.zip", {"d/a"});
    EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "", false) ||
                 ARXUnzipFile::unzip("out.zip", "out.zip/in", false));
    EXPECT_TRUE(ARXUnzipFile::unzip("out.zip", nullptr, true));
    EXPECT_EQ((Tree{{"a", "d/a"}, {"out.zip", readAll("out.zip")}}), readTree("."));
}

TEST_F(ARXUnzipFileTest, TheFirstBadEntryEndsItAndKeepsTheEarlierOnes)
{
    makeArchive("out.zip", {"a", "bad", "c"});
    std::string bytes = readAll("out.zip");
    bytes[bytes.find("PK\3\4", 1)] = 'x';
    writeTree(".", {{"out.zip", bytes}});
    ARXUnzipFile archive("out.zip");
    for (int round = 0; round < 2; ++round)  // it stays usable
    {
        EXPECT_FALSE(archive.unzip(false, "to"));
        EXPECT_EQ((Tree{{"a", "a"}, {"bad", ""}}), readTree("to"));
    }
}

TEST_F(ARXUnzipFileTest, OnlyTheTimeOfTheLastChangeIsSet)
{
    setenv("TZ", "IST-5:30", 1);
    // 30 February, month 0, and hour 24 are no dates: the time of the writing stays.
    for (std::string const date :
         {"\xD4\xB6\x51\x5A", "\xD4\xB6\x5E\x5A", "\xD4\xB6\x11\x5A", "\xD4\xC6\x51\x5A"})
    {
        makeArchive("out.zip", {"a"}, {{12, date}});
        writeTree(".", {{"a", "old"}});
        timespec const times[] = {{1600000000, 123456789}, {1600000000, 0}};
        ASSERT_EQ(0, utimensat(AT_FDCWD, "a", times, 0));
        struct stat status;
        ASSERT_TRUE(ARXUnzipFile::unzip("out.zip", nullptr, false) && stat("a", &status) == 0);
        EXPECT_TRUE(status.st_atim.tv_sec == 1600000000 && status.st_atim.tv_nsec == 123456789);
        EXPECT_EQ(date == "\xD4\xB6\x51\x5A", status.st_mtime == 1739813080) << status.st_mtime;
        EXPECT_NE(1600000000, status.st_mtime);
    }
}

TEST_F(ARXUnzipFileTest, ADescriptionHoldsTheNumbersAndCutsTheComment)
{
    for (std::size_t length : {0u, 255u, 256u, 300u})
    {
        I18NString const comment(std::string(length, 'c').c_str());
        makeArchive("out.zip", {"12345"}, {{38, "\x13\4\5\6"}}, &comment);
        OpenUnzipFile archive("out.zip");
        ARXUnzipFile::UZ_FileInfo info;
        ASSERT_TRUE(archive.getFileInfo(info));
        EXPECT_EQ(std::string(std::min<std::size_t>(length, 255), 'c'), info.szComment);
        EXPECT_EQ(0xcbf53a1cu, info.crc);
        EXPECT_EQ(0x06050413u, info.externalAttributes);
        EXPECT_FALSE(info.isFolder);  // DOS marks it so, but it has contents
    }
}

TEST_F(ARXUnzipFileTest, TheWalkReachesBeyondACountOf16Bits)
{
    makeArchive("out.zip", Names(70000, "n"));
    ARXUnzipFile archive("out.zip");
    int count = 1;
    while (archive.gotoNextFile())
        ++count;
    EXPECT_EQ(70000, count);
}
}  // namespace
