#include "zip/ARXZipFile.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include "NEBCore/I18NString.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipInputStream.h"
#include "zip/ZipTools.h"

namespace
{
namespace fs = std::filesystem;
using testing::ElementsAre;

unsigned char s_bytes[] = "bytes";

void openEntry(ARXZipFile& archive, char const* name, int level = 6)
{
    archive.openNewFileInZip(name, nullptr, nullptr, ARXZipFile::compressDeflated, level);
}

std::vector<std::string> namesIn(std::string const& archive)
{
    std::vector<std::string> names;
    ARXZipInputStream stream(archive.c_str());
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
    {
        names.emplace_back();
        stream.getCurrentEntryName(names.back());
    }
    return names;
}

enum State
{
    s_closed,
    s_archiveOpen,
    s_entryOpen
};

// What the object shows of its state; the question ends it.
State stateOf(ARXZipFile& archive)
{
    if (failureOf([&] { archive.writeInFileInZip(s_bytes, 1); }).m_name.empty())
        return s_entryOpen;
    return failureOf([&] { openEntry(archive, "new"); }).m_name.empty() ? s_archiveOpen : s_closed;
}

struct FailureCase
{
    char const* m_name;
    State m_before;
    void (*m_call)(ARXZipFile& archive);
    char const* m_text;
    char const* m_operation;  // null for an assertion
    State m_after;
};

FailureCase const s_failures[] = {
    {"CreateNull", s_entryOpen, [](ARXZipFile& zip) { zip.create(static_cast<char const*>(nullptr)); },
     "NEB_ASSERT(fileName != NULL);", nullptr, s_entryOpen},
    {"CreateWhereNothingCanBe", s_entryOpen, [](ARXZipFile& zip) { zip.create("/dev/null/x"); },
     "Unable to create zip file: \n/dev/null/x", "ARXZipFile::initialize", s_closed},
    {"AddNull", s_entryOpen, [](ARXZipFile& zip) { zip.addFile(nullptr, ""); }, "NEB_ASSERT(fileName);",
     nullptr, s_entryOpen},
    {"AddMissing", s_entryOpen, [](ARXZipFile& zip) { zip.addFile("missing", ""); }, "NEB_ASSERT(exists);",
     nullptr, s_entryOpen},
    {"AddFolder", s_entryOpen, [](ARXZipFile& zip) { zip.addFile("folder", ""); }, "NEB_ASSERT(exists);",
     nullptr, s_entryOpen},
    {"AddWithoutName", s_entryOpen, [](ARXZipFile& zip) { zip.addFile("file", "file"); },
     "NEB_ASSERT(0 < strlen(fileName));", nullptr, s_archiveOpen},
    {"AddToNoArchive", s_closed, [](ARXZipFile& zip) { zip.addFile("file", ""); },
     "NEB_ASSERT(m_zipFile != NULL);", nullptr, s_closed},
    {"OpenNull", s_entryOpen, [](ARXZipFile& zip) { openEntry(zip, nullptr); },
     "NEB_ASSERT(fileName != NULL);", nullptr, s_entryOpen},
    {"OpenInNoArchive", s_closed, [](ARXZipFile& zip) { openEntry(zip, ""); },
     "NEB_ASSERT(m_zipFile != NULL);", nullptr, s_closed},
    {"OpenWithoutName", s_entryOpen, [](ARXZipFile& zip) { openEntry(zip, ""); },
     "NEB_ASSERT(0 < strlen(fileName));", nullptr, s_archiveOpen},
    {"OpenLongestNameAndOne", s_entryOpen,
     [](ARXZipFile& zip) { openEntry(zip, std::string(65536, 'n').c_str()); },
     "Unable to open new file in zip file: \n-102", "ARXZipFile::openNewFileInZip", s_archiveOpen},
    {"OpenWithoutLevel", s_entryOpen, [](ARXZipFile& zip) { openEntry(zip, "n", -2); },
     "Unable to open new file in zip file: \n-2", "ARXZipFile::openNewFileInZip", s_archiveOpen},
    {"WriteToNoEntry", s_archiveOpen, [](ARXZipFile& zip) { zip.writeInFileInZip(s_bytes, 1); },
     "No file currently open in zip file.", "ARXZipFile::writeInFileInZip", s_archiveOpen},
    {"WriteNull", s_entryOpen, [](ARXZipFile& zip) { zip.writeInFileInZip(nullptr, 1); },
     "NEB_ASSERT(nRet == ZIP_OK);", nullptr, s_entryOpen},
    {"CloseNoEntry", s_archiveOpen, [](ARXZipFile& zip) { zip.closeFileInZip(); },
     "No file currently open in zip file.", "ARXZipFile::closeFileInZip", s_archiveOpen},
};

class ARXZipFileFailure : public testing::TestWithParam<FailureCase>
{
};

TEST_P(ARXZipFileFailure, HasItsTextAndLeavesItsState)
{
    FailureCase const& row = GetParam();
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    writeTree(".", {{"file", ""}, {"folder/", ""}});
    ARXZipFile archive;
    archive.create("out.zip");
    if (row.m_before == s_closed)
        archive.close();
    if (row.m_before == s_entryOpen)
        openEntry(archive, "first");

    Failure const failure = failureOf([&] { row.m_call(archive); });
    EXPECT_EQ(row.m_operation ? "ARXException" : "NEBAssertError", failure.m_name);
    EXPECT_EQ(row.m_text, failure.m_text);
    EXPECT_EQ(row.m_operation ? row.m_operation : "", failure.m_operation);
    EXPECT_EQ(1u, failure.m_places);
    EXPECT_EQ(row.m_after, stateOf(archive));
}

INSTANTIATE_TEST_SUITE_P(Rows, ARXZipFileFailure, testing::ValuesIn(s_failures),
                         [](auto const& test) { return test.param.m_name; });

TEST(ARXZipFileAddDirectory, WritesWhatEveryReaderReadsBack)
{
    TemporaryFolder const folder;
    Tree const tree = {{"deep/", ""},
                       {"deep/er/", ""},
                       {"deep/er/x", "1"},
                       {"empty", ""},
                       {"a.txt", "text"},
                       {"big", noise(300000)},
                       {"zeros", std::string(300000, '\0')}};
    writeTree(folder / "tree", tree);
    ARXZipFile archive;
    archive.create((folder / "out.zip").c_str());
    archive.addDirectory((folder / "tree").c_str(), nullptr, true, false);
    archive.close();
    archive.close();

    EXPECT_THAT(namesIn(folder / "out.zip"), ElementsAre("a.txt", "big", "empty", "zeros", "deep/er/x"));
    ASSERT_TRUE(ARXUnzipFile::unzip((folder / "out.zip").c_str(), (folder / "ours").c_str(), false));
    EXPECT_TRUE(tree == readTree(folder / "ours"));
    for (char const* reader :
         {"unzip -t out.zip", "7z t out.zip", "bsdtar -tf out.zip", "unzip out.zip -d a",
          "bsdtar -xf out.zip --one-top-level=b || (mkdir -p b && bsdtar -xf out.zip -C b)",
          "python3 -m zipfile -e out.zip c", "7z x -od out.zip"})
        EXPECT_EQ(0, run(folder.path(), reader)) << reader;
    for (char const* target : {"a", "b", "c", "d"})
        EXPECT_TRUE(tree == readTree(folder / target)) << target;
}

TEST(ARXZipFileAddDirectory, NamesEntriesByTheBase)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    writeTree(".", {{"tree/a", ""}, {"tree/sub/a", ""}});
    std::vector<std::string> const nested = {"a", "sub/a"};
    struct
    {
        char const* m_dir;
        char const* m_base;
        bool m_recursive;
        bool m_resolve;
        std::vector<std::string> m_names;
    } const rows[] = {
        {"tree", nullptr, true, false, nested},       {"tree", nullptr, false, false, {"a"}},
        {"tree", "", true, false, {"a", "a"}},        {".\\tree", ".", true, false, {"tree/a", "tree/sub/a"}},
        {"tree/../tree", "tree", true, true, nested}, {"missing", nullptr, true, false, {}},
    };
    for (auto const& row : rows)
    {
        ARXZipFile archive;
        archive.create(I18NString("out.zip"));
        openEntry(archive, "0");
        archive.addDirectory(row.m_dir, row.m_base, row.m_recursive, row.m_resolve);
        archive.close();
        std::vector<std::string> names = namesIn("out.zip");
        names.erase(names.begin());
        EXPECT_EQ(row.m_names, names) << row.m_dir;
    }
    ARXZipFile archive;
    archive.create(I18NString("out.zip"));
    archive.addDirectory(I18NString("tree"), I18NString(), true, false);
    archive.addFile(I18NString("tree/sub/a"), I18NString("tree"));
    archive.close();
    EXPECT_THAT(namesIn("out.zip"), ElementsAre("a", "a", "sub/a"));
}

TEST(ARXZipFileAddFile, SkipsEveryPathThatHoldsTheArchives)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    writeTree(".", {{"tree/a", ""}, {"tree/out.zip.bak", ""}, {"tree/sub/tree/out.zip", ""}});
    ARXZipFile archive;
    archive.addDirectory("tree", nullptr, true, false);  // before any create the empty name is in every path
    archive.create("tree/out.zip");
    archive.addDirectory("tree", nullptr, true, false);
    archive.close();
    archive.addFile("tree/out.zip", "");
    EXPECT_THAT(namesIn("tree/out.zip"), ElementsAre("a"));
}

TEST(ARXZipFileAddFile, EndsForTheArchiveUnderAnotherSpelling)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    writeTree(".", {{"tree/a", noise(400000)}});
    ARXZipFile archive;
    archive.create("tree/../tree/out.zip");
    archive.addDirectory("tree", nullptr, true, true);
    archive.close();
    EXPECT_THAT(namesIn("tree/out.zip"), ElementsAre("a", "out.zip"));
    EXPECT_EQ(0, run(folder / "tree", "unzip -t out.zip"));
}

struct DateCase
{
    char const* m_name;
    char const* m_zone;
    std::time_t m_time;
    unsigned m_dosDate;
};

unsigned constexpr dos(unsigned year, unsigned month, unsigned day, unsigned hour, unsigned minute,
                       unsigned second)
{
    return (year - 1980) << 25 | month << 21 | day << 16 | hour << 11 | minute << 5 | second / 2;
}

char constexpr s_newYork[] = "EST5EDT,M3.2.0,M11.1.0";
DateCase const s_dates[] = {
    {"Utc", "UTC0", 1700000000, dos(2023, 11, 14, 22, 13, 20)},
    {"OddSecond", "UTC0", 1700000001, dos(2023, 11, 14, 22, 13, 20)},
    {"HalfHourEast", "IST-5:30", 1700000000, dos(2023, 11, 15, 3, 43, 20)},
    {"BeforeSpring", s_newYork, 1678604398, dos(2023, 3, 12, 1, 59, 58)},
    {"BehindSpring", s_newYork, 1678604400, dos(2023, 3, 12, 3, 0, 0)},
    {"Summer", s_newYork, 1688212800, dos(2023, 7, 1, 8, 0, 0)},
    {"BehindAutumn", s_newYork, 1699167600, dos(2023, 11, 5, 2, 0, 0)},
    {"First", "UTC0", 315532800, dos(1980, 1, 1, 0, 0, 0)},
    {"Beyond32Bits", "UTC0", 4102444800, dos(2100, 1, 1, 0, 0, 0)},
    {"TooEarly", "UTC0", 0, dos(2050, 1, 1, 0, 0, 0)},
    {"NoSuchYear", "UTC0", INT64_MAX / 2, dos(1980, 1, 1, 0, 0, 0)},
};

class ARXZipFileDate : public testing::TestWithParam<DateCase>
{
};

TEST_P(ARXZipFileDate, IsLocalTimeAndComesBack)
{
    DateCase const& row = GetParam();
    TimeZone const zone(row.m_zone);
    setenv("TMPDIR", "/dev/shm", 0);  // other file systems hold fewer years
    TemporaryFolder const folder;
    unsetenv("TMPDIR");
    writeAll(folder / "f", "x");
    timespec const times[] = {{row.m_time, 0}, {row.m_time, 0}};
    struct stat status;
    if (utimensat(AT_FDCWD, (folder / "f").c_str(), times, 0) != 0 ||
        stat((folder / "f").c_str(), &status) != 0 || status.st_mtime != row.m_time)
        GTEST_SKIP() << "the file system can't hold that time";

    ARXZipFile archive;
    archive.create((folder / "out.zip").c_str());
    archive.addFile((folder / "f").c_str(), nullptr);
    archive.close();
    ARXZipInputStream::zipEntry entry;
    ARXZipInputStream((folder / "out.zip").c_str()).getCurrentEntryInfo(entry);
    EXPECT_EQ(row.m_dosDate, entry.dosDate);

    ASSERT_TRUE(ARXUnzipFile::unzip((folder / "out.zip").c_str(), (folder / "to").c_str(), false));
    ASSERT_EQ(0, stat((folder / "to/f").c_str(), &status));
    bool const isExpressed = row.m_time >= 315532800 && row.m_time <= 4102444800;
    EXPECT_TRUE(!isExpressed || status.st_mtime == row.m_time / 2 * 2) << status.st_mtime;
}

INSTANTIATE_TEST_SUITE_P(Rows, ARXZipFileDate, testing::ValuesIn(s_dates),
                         [](auto const& test) { return test.param.m_name; });

TEST(ARXZipFileEntries, AreFinishedByWhatComesNext)
{
    TemporaryFolder const folder;
    CurrentFolder const current(folder.path());
    I18NString const comment("a comment");
    {
        ARXZipFile archive;
        archive.create("one.zip");
        archive.openNewFileInZip("stored", nullptr, &comment, static_cast<ARXZipFile::compressMethod_t>(8),
                                 9);
        archive.writeInFileInZip(s_bytes, 5);
        archive.writeInFileInZip(nullptr, 0);  // leaves the running checksum alone
        openEntry(archive, "deflated");
        archive.writeInFileInZip(s_bytes, 5);
        archive.create("two.zip");
        openEntry(archive, "left open");
        archive.writeInFileInZip(s_bytes, 5);
    }
    EXPECT_EQ(0,
              run(".", "unzip -t one.zip && unzip -t two.zip && unzip -l -v one.zip | grep -q 'a comment'"));
    EXPECT_THAT(namesIn("one.zip"), ElementsAre("stored", "deflated"));
    EXPECT_THAT(namesIn("two.zip"), ElementsAre("left open"));
    ARXZipInputStream::zipEntry entry;
    ARXZipInputStream("one.zip").getCurrentEntryInfo(entry);
    EXPECT_EQ(0u, entry.compressionMethod);
    EXPECT_EQ(5u, entry.compressedSize);
}

TEST(ARXZipFileEntries, ReportAFullDisk)
{
    ARXZipFile archive;
    archive.create("/dev/full");
    openEntry(archive, "n");
    std::string bytes = noise(500000);
    Failure const failure = failureOf(
        [&]
        {
            archive.writeInFileInZip(reinterpret_cast<unsigned char*>(bytes.data()),
                                     static_cast<unsigned int>(bytes.size()));
        });
    EXPECT_EQ("NEB_ASSERT(nRet == ZIP_OK);", failure.m_text);
    EXPECT_EQ("", failureOf([&] { archive.close(); }).m_name);
}
}  // namespace
