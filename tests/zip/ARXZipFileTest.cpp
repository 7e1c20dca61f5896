#include "zip/ARXZipFile.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include "NEBCore/I18NString.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipInputStream.h"
#include "zip/ZipTools.h"

namespace
{
using Zip = ARXZipFile&;

char const* const s_noName = nullptr;
std::string const s_longest(65536, 'n');

void open(Zip archive, char const* name, int level = 6)
{
    archive.openNewFileInZip(name, nullptr, nullptr, ARXZipFile::compressDeflated, level);
}

Names namesIn(char const* archive)
{
    Names names(1);
    ARXZipInputStream stream(archive);
    for (; stream.getCurrentEntryName(names.back()); names.emplace_back())
        if (!stream.getNextEntry())
            return names;
    return {};
}

int constexpr Closed = 0, Archive = 1, Entry = 2;

// What the object shows of its state; the question ends it.
int stateOf(Zip archive)
{
    if (failureOf([&] { write(archive, "x"); }) == "none")
        return Entry;
    return failureOf([&] { open(archive, "new"); }) == "none" ? Archive : Closed;
}

struct FailureCase
{
    int m_before, m_after;
    char const* m_failure;
    void (*m_call)(Zip archive);
};

#define FAILED "ARXException: Unable to open new file in zip file: \n"
#define NO_FILE "ARXException: No file currently open in zip file. @ARXZipFile::"
FailureCase const s_failures[] = {
    {Entry, Entry, "NEB_ASSERT(fileName != NULL); x1", [](Zip z) { z.create(s_noName); }},
    {Entry, Closed, "ARXException: Unable to create zip file: \n/dev/null/x @ARXZipFile::initialize x1",
     [](Zip z) { z.create("/dev/null/x"); }},
    {Entry, Entry, "NEB_ASSERT(fileName); x1", [](Zip z) { z.addFile(nullptr, ""); }},
    {Entry, Entry, "NEB_ASSERT(exists); x1", [](Zip z) { z.addFile("missing", ""); }},
    {Entry, Entry, "NEB_ASSERT(exists); x1", [](Zip z) { z.addFile("folder", ""); }},
    {Entry, Archive, "NEB_ASSERT(0 < strlen(fileName)); x1", [](Zip z) { z.addFile("file", "file"); }},
    {Closed, Closed, "NEB_ASSERT(m_zipFile != NULL); x1", [](Zip z) { z.addFile("file", ""); }},
    {Entry, Entry, "NEB_ASSERT(fileName != NULL); x1", [](Zip z) { open(z, s_noName); }},
    {Entry, Archive, FAILED "-102 @ARXZipFile::openNewFileInZip x1",
     [](Zip z) { open(z, s_longest.c_str()); }},
    {Entry, Archive, FAILED "-2 @ARXZipFile::openNewFileInZip x1", [](Zip z) { open(z, "n", -2); }},
    {Archive, Archive, NO_FILE "writeInFileInZip x1", [](Zip z) { write(z, "x"); }},
    {Entry, Entry, "NEB_ASSERT(nRet == ZIP_OK); x1", [](Zip z) { z.writeInFileInZip(nullptr, 1); }},
    {Archive, Archive, NO_FILE "closeFileInZip x1", [](Zip z) { z.closeFileInZip(); }},
};

// A fresh current folder and an archive in it.
class ARXZipFileTest : public testing::Test
{
protected:
    TemporaryFolder m_folder;
    CurrentFolder m_current{m_folder.path()};
    ARXZipFile m_archive;
};

TEST_F(ARXZipFileTest, FailuresHaveTheirTextsAndLeaveTheirStates)
{
    writeTree(".", {{"file", ""}, {"folder/", ""}});
    for (FailureCase const& row : s_failures)
    {
        SCOPED_TRACE(row.m_failure);
        m_archive.create("out.zip");
        if (row.m_before == Closed)
            m_archive.close();
        else if (row.m_before == Entry)
            open(m_archive, "first");
        EXPECT_EQ(row.m_failure, failureOf([&] { row.m_call(m_archive); }));
        EXPECT_EQ(row.m_after, stateOf(m_archive));
    }
}

TEST_F(ARXZipFileTest, EveryReaderReadsBackWhatWasWritten)
{
    writeTree(".", {{"t/d/e/x", "1"}, {"t/none", ""}});
    ASSERT_TRUE(run("t", "head -c 300000 /dev/urandom >noise; head -c 300000 /dev/zero >zeros"));
    Tree const tree = readTree(".");
    m_archive.create("out.zip");
    m_archive.addDirectory("t", ".", true, true);
    m_archive.close();
    m_archive.close();
    EXPECT_EQ((Names{"t/noise", "t/none", "t/zeros", "t/d/e/x"}), namesIn("out.zip"));
    for (char const* reader :
         {"unzip -t out.zip", "7z t out.zip", "bsdtar -tf out.zip", "unzip out.zip -d a", "7z x -ob out.zip",
          "mkdir c && bsdtar -xf out.zip -C c", "python3 -m zipfile -e out.zip d"})
        EXPECT_TRUE(run(".", reader)) << reader;
    EXPECT_TRUE(ARXUnzipFile::unzip("out.zip", "e", false));
    for (char const* target : {"a", "b", "c", "d", "e"})
        EXPECT_TRUE(tree == readTree(target)) << target;
}

TEST_F(ARXZipFileTest, NamesFollowTheBaseAndTheFlags)
{
    writeTree(".", {{"t/a", ""}, {"t/sub/a", ""}});
    auto const add = [&](char const* dir, char const* base, bool recursive, bool resolve)
    {
        m_archive.create(I18NString("out.zip"));
        open(m_archive, "0");
        m_archive.addDirectory(dir, base, recursive, resolve);
        m_archive.close();
        return namesIn("out.zip");
    };
    EXPECT_EQ((Names{"0", "a", "sub/a"}), add("t", nullptr, true, false));
    EXPECT_EQ((Names{"0", "a"}), add("t", nullptr, false, false));
    EXPECT_EQ((Names{"0", "a", "a"}), add("t", "", true, false));
    EXPECT_EQ((Names{"0", "t/a", "t/sub/a"}), add(".\\t", ".", true, false));
    EXPECT_EQ((Names{"0", "a", "sub/a"}), add("t/../t", "t", true, true));
    EXPECT_EQ((Names{"0"}), add("missing", nullptr, true, false));

    m_archive.create("out.zip");
    m_archive.addDirectory(I18NString("t"), I18NString(), true, false);
    m_archive.addFile(I18NString("t\\sub\\a"), I18NString("t"));
    m_archive.close();
    EXPECT_EQ((Names{"a", "a", "sub/a"}), namesIn("out.zip"));
}

TEST_F(ARXZipFileTest, TheArchiveItselfIsSkippedByItsPathAndEndsByAnother)
{
    writeTree(".", {{"t/out.zip.bak", ""}});
    ASSERT_TRUE(run("t", "head -c 400000 /dev/urandom >a"));
    m_archive.addDirectory("t", nullptr, true, false);  // before any create: the empty name is in every path
    m_archive.create("t/out.zip");
    m_archive.addDirectory("t", nullptr, true, false);
    m_archive.close();
    m_archive.addFile("t/out.zip", "");
    EXPECT_EQ(Names{"a"}, namesIn("t/out.zip"));

    m_archive.create("t/../t/out.zip");
    m_archive.addDirectory("t", nullptr, true, true);
    m_archive.close();
    EXPECT_EQ((Names{"a", "out.zip", "out.zip.bak"}), namesIn("t/out.zip"));
    EXPECT_TRUE(run("t", "unzip -t out.zip"));
}

struct DateCase
{
    char const* m_zone;
    std::time_t m_time;
    unsigned m_dosDate;
    std::time_t m_back;
};

char constexpr s_newYork[] = "EST5EDT,M3.2.0,M11.1.0";
DateCase const s_dates[] = {
    {"IST-5:30", 1700000001, 0x576F1D6A, 1700000000},  // 2023-11-15 03:43:20
    {s_newYork, 1678604398, 0x566C0F7D, 1678604398},   // 2023-03-12 01:59:58, and then
    {s_newYork, 1678604400, 0x566C1800, 1678604400},   // 03:00:00
    {s_newYork, 1699167600, 0x57651000, 1699167600},   // 2023-11-05 02:00:00, after 01:00:00 came twice
    {"UTC0", 4102444800, 0xF0210000, 4102444800},      // 2100-01-01
    {"UTC0", 0, 0x8C210000, 2524608000},               // comes out as 2050-01-01
    {"UTC0", INT64_MAX / 2, 0x00210000, 315532800},    // as 1980-01-01
};

TEST_F(ARXZipFileTest, DatesAreLocalTimeAndComeBack)
{
    setenv("TMPDIR", "/dev/shm", 0);  // other file systems hold fewer years
    TemporaryFolder const folder;
    unsetenv("TMPDIR");
    CurrentFolder const current(folder.path());
    for (DateCase const& row : s_dates)
    {
        SCOPED_TRACE(testing::Message() << row.m_zone << ' ' << row.m_time);
        setenv("TZ", row.m_zone, 1);
        writeTree(".", {{"f", "x"}});
        timespec const times[] = {{row.m_time, 0}, {row.m_time, 0}};
        ASSERT_EQ(0, utimensat(AT_FDCWD, "f", times, 0));
        m_archive.create("out.zip");
        m_archive.addFile("f", nullptr);
        m_archive.close();
        ARXZipInputStream::zipEntry entry;
        ARXZipInputStream("out.zip").getCurrentEntryInfo(entry);
        EXPECT_EQ(row.m_dosDate, entry.dosDate);
        struct stat status;
        ASSERT_TRUE(ARXUnzipFile::unzip("out.zip", nullptr, false) && stat("f", &status) == 0);
        EXPECT_EQ(row.m_back, status.st_mtime);
    }
}

TEST_F(ARXZipFileTest, EntriesAndArchivesAreFinishedByWhatComesNext)
{
    {
        ARXZipFile archive;
        archive.create("one.zip");
        archive.openNewFileInZip("stored", nullptr, nullptr, static_cast<ARXZipFile::compressMethod_t>(8), 9);
        write(archive, "12345");
        archive.writeInFileInZip(nullptr, 0);  // leaves the running checksum alone
        open(archive, "deflated");
        write(archive, "12345");
        archive.create("two.zip");
        open(archive, "left open");
        write(archive, "12345");
    }
    EXPECT_TRUE(run(".", "unzip -t one.zip && unzip -t two.zip"));
    EXPECT_EQ((Tree{{"stored", "12345"}, {"deflated", "12345"}}), readStream(ARXZipInputStream("one.zip")));
    ARXZipInputStream::zipEntry entry;
    ARXZipInputStream("one.zip").getCurrentEntryInfo(entry);
    EXPECT_EQ(0u, entry.compressionMethod);
}

TEST_F(ARXZipFileTest, AFullDiskIsReported)
{
    m_archive.create("/dev/full");
    open(m_archive, "n", 0);
    EXPECT_EQ("NEB_ASSERT(nRet == ZIP_OK); x1",
              failureOf([&] { write(m_archive, std::string(500000, 'x')); }));
    EXPECT_EQ("none", failureOf([&] { m_archive.close(); }));
}
}  // namespace
