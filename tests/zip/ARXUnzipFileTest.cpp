#include "zip/ARXUnzipFile.h"

#include <sstream>

#include <fcntl.h>
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

struct ARXUnzipFileTest : ZipTest
{
};

TEST_F(ARXUnzipFileTest, ArchivesOfOtherToolsComeOutEqualFromFileHandleAndMemory)
{
    // Pack the folder t into out.zip; ours reads it or refuses.
    std::pair<char const*, bool> const makers[] = {
        {"cd t && zip -r ../out.zip .", true},
        {"cd t && (echo front; zip -r - . | cat) >../out.zip", true},
        {"7z a -tzip out.zip ./t/.", true},
        {"python3 -m zipfile -c out.zip t/*", true},
        {"cd t && bsdtar -a -cf ../out.zip .", true},
        {"cd t && zip -P secret -r ../out.zip .", false},
        {"7z a -tzip -mm=BZip2 out.zip ./t/.", false}};
    writeTree({{"t/a/b/c", "text"}, {"t/none", ""}, {"t/zeros", std::string(200000, '\0')}});
    ASSERT_TRUE(run("head -c 200000 /dev/urandom >t/noise"));
    Tree files = readTree("t");
    files.erase("a/"), files.erase("a/b/");
    for (auto const& [command, isReadable] : makers)
    {
        SCOPED_TRACE(command);
        ASSERT_TRUE(run("rm -rf to out.zip") && run(command));
        EXPECT_EQ(isReadable, ARXUnzipFile::unzip("out.zip", "to", false));
        EXPECT_EQ(isReadable, readTree("t") == readTree("to"));
        std::string const bytes = readAll("out.zip");
        FilePtr const file(std::fopen("out.zip", "rb"), std::fclose);
        EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream("out.zip")));
        EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream(file.get())));
        EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream(bytes.data(), bytes.size())));
    }
}

TEST_F(ARXUnzipFileTest, NamesStayInTheFolderOrAreRefused)
{
    // What is made of an entry, beside the folder itself; nothing of a name that is refused.
    std::tuple<char const*, bool, char const*> const names[] = {
        {"../x", false, ""},          {"..\\x", false, ""},       {"a/../../x", false, ""},
        {"./..//x", false, ""},       {"../d/", false, ""},       {"..", false, ""},
        {"a/..", true, ""},           {"../d/", true, ""},        {"../x", true, "x"},
        {"a/../b", false, "a/ b"},    {"..x", false, "..x"},      {"/x", false, "x"},
        {"C:\\x", false, "C:/ C:/x"}, {"C:x", false, "C:x"},      {"a\\b", false, "a/ a/b"},
        {"a\\b", true, "b"},          {"a/b/", false, "a/ a/b/"}, {"a\\b\\", true, "a/ a/b/"}};
    for (auto const& [entry, ignorePath, made] : names)
    {
        SCOPED_TRACE(entry);
        std::filesystem::remove_all("p");
        makeArchive({entry});
        EXPECT_EQ(*made != '\0', ARXUnzipFile::unzip("out.zip", "p/to/", ignorePath));
        Tree expected = {{"to/", ""}};
        std::istringstream words(made);
        for (std::string name; words >> name;)
            expected["to/" + name] = name.back() == '/' ? "" : entry;
        EXPECT_EQ(expected, readTree("p"));
        EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator("."), {}));
    }
    for (std::size_t const length : {258u, 259u, 260u, 300u})
    {
        makeArchive({std::string(150, 'd') + "/" + std::string(length - 151, 'f')});
        EXPECT_EQ(length < 260, ARXUnzipFile::unzip("out.zip", std::to_string(length).c_str(), false));
    }
}

TEST_F(ARXUnzipFileTest, OpeningClosesWhatWasOpenWhateverComesNext)
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

// Into the archive's own folder where none is given.
TEST_F(ARXUnzipFileTest, TheFirstBadEntryEndsItAndKeepsTheEarlierOnes)
{
    makeArchive({"d/a", "bad", "c"});
    std::string bytes = readAll("out.zip");
    EXPECT_FALSE(ARXUnzipFile::unzip("out.zip", "", false) ||
                 ARXUnzipFile::unzip("out.zip", "out.zip/x", false));
    bytes[bytes.find("PK\3\4", 1)] = 'x';
    writeTree({{"out.zip", bytes}});
    ARXUnzipFile archive("out.zip");
    for (int round = 0; round < 2; ++round)  // it stays usable
        EXPECT_FALSE(archive.unzip(true, nullptr));
    EXPECT_EQ((Tree{{"a", "d/a"}, {"bad", ""}, {"out.zip", bytes}}), readTree("."));
}

TEST_F(ARXUnzipFileTest, OnlyTheTimeOfTheLastChangeIsSet)
{
    setenv("TZ", "IST-5:30", 1);
    // 30 February, month 0, and hour 24 are no dates: the time of the writing stays.
    for (std::string const date :
         {"\xD4\xB6\x51\x5A", "\xD4\xB6\x5E\x5A", "\xD4\xB6\x11\x5A", "\xD4\xC6\x51\x5A"})
    {
        makeArchive({"a"}, {{12, date}}), writeTree({{"a", "old"}});
        timespec const times[] = {{1600000000, 123456789}, {1600000000, 0}};
        struct stat status;
        ASSERT_TRUE(utimensat(AT_FDCWD, "a", times, 0) == 0 &&
                    ARXUnzipFile::unzip("out.zip", nullptr, false));
        ASSERT_EQ(0, stat("a", &status));
        EXPECT_TRUE(status.st_atim.tv_sec == 1600000000 && status.st_atim.tv_nsec == 123456789);
        EXPECT_EQ(date[2] == '\x51' && date[1] == '\xB6', status.st_mtime == 1739813080) << status.st_mtime;
        EXPECT_NE(1600000000, status.st_mtime);
    }
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
        EXPECT_TRUE(info.crc == 0xcbf53a1c && info.externalAttributes == 0x06050413);
        EXPECT_FALSE(info.isFolder);  // DOS marks it so, but it has contents
    }
}
}  // namespace
