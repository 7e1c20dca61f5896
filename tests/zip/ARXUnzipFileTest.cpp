#include "zip/ARXUnzipFile.h"

#include <sstream>

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

TEST_F(ARXUnzipFileTest, OurArchivesAndThoseOfOtherToolsComeOutEqualEverywhere)
{
    // Pack the folder t into out.zip, the first with our own; ours reads it or refuses.
    std::pair<char const*, bool> const makers[] = {
        {"true", true},
        {"cd t && zip -r ../out.zip .", true},
        {"cd t && (echo front; zip -r - . | cat) >../out.zip", true},
        {"7z a -tzip out.zip ./t/.", true},
        {"python3 -m zipfile -c out.zip t/*", true},
        {"cd t && bsdtar -a -cf ../out.zip .", true},
        {"cd t && zip -P secret -r ../out.zip .", false},
        {"7z a -tzip -mm=BZip2 out.zip ./t/.", false}};
    writeTree({{"t/a/b/c", "text"}, {"t/none", ""}, {"t/zeros", std::string(300000, '\0')}});
    ASSERT_TRUE(run("head -c 300000 /dev/urandom >t/noise"));
    Tree const tree = readTree("t");
    Tree files = tree;
    files.erase("a/"), files.erase("a/b/");
    ARXZipFile archive;
    archive.create("out.zip"), archive.addDirectory("t", nullptr, true, true), archive.close();
    for (char const* reader :
         {"unzip -t out.zip && unzip out.zip -d a", "7z t out.zip && 7z x -oa out.zip",
          "bsdtar -tf out.zip && mkdir a && bsdtar -xf out.zip -C a", "python3 -m zipfile -e out.zip a"})
        EXPECT_TRUE(run(reader) && tree == readTree("a") && run("rm -r a")) << reader;
    for (auto const& [command, isReadable] : makers)
    {
        SCOPED_TRACE(command);
        ASSERT_TRUE(run(command));
        EXPECT_EQ(isReadable, ARXUnzipFile::unzip("out.zip", "to", false));
        EXPECT_EQ(isReadable, tree == readTree("to"));
        std::string const bytes = readAll("out.zip");
        FilePtr const file(std::fopen("out.zip", "rb"), std::fclose);
        EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream("out.zip")));
        EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream(file.get())));
        EXPECT_EQ(isReadable, files == readStream(ARXZipInputStream(bytes.data(), bytes.size())));
        ASSERT_TRUE(run("rm -r to out.zip"));
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
    for (std::size_t const length : {258u, 259u, 260u})
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
