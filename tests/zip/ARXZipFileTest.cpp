#include "zip/ARXZipFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "zip/ZipTools.h"

namespace
{
void open(ARXZipFile& archive, char const* name, int level = 6)
{
    archive.openNewFileInZip(name, nullptr, nullptr, ARXZipFile::compressDeflated, level);
}

struct ARXZipFileTest : ZipTest
{
    ARXZipFile m_archive;
};

std::string const s_nameNull = "NEBAssertError: NEB_ASSERT(fileName != NULL);";
std::string const s_notWritten = "NEBAssertError: NEB_ASSERT(nRet == ZIP_OK);";
std::string const s_notOpened = "ARXException: Unable to open new file in zip file: \n";

struct FailureRow
{
    char const* m_name;
    void (*m_call)(ARXZipFile&);
    std::string m_text;
    bool m_keepsEntry;
};

TEST_F(ARXZipFileTest, EachFailureHasItsOutcome)
{
    static char const* const s_null = nullptr;
    using Zip = ARXZipFile&;
    FailureRow const rows[] = {
        {"CreateNull", [](Zip zip) { zip.create(s_null); }, s_nameNull, true},
        {"CreateNowhere", [](Zip zip) { zip.create("/dev/null/x"); },
         "ARXException: Unable to create zip file: \n/dev/null/x", false},
        {"AddNull", [](Zip zip) { zip.addFile(s_null, ""); }, "NEBAssertError: NEB_ASSERT(fileName);", true},
        {"AddFolder", [](Zip zip) { zip.addFile(".", ""); }, "NEBAssertError: NEB_ASSERT(exists);", true},
        {"AddNameless", [](Zip zip) { zip.addFile("f", "f"); },
         "NEBAssertError: NEB_ASSERT(0 < strlen(fileName));", false},
        {"OpenNull", [](Zip zip) { open(zip, s_null); }, s_nameNull, true},
        {"TooLong", [](Zip zip) { open(zip, std::string(65536, 'n').c_str()); }, s_notOpened + "-102", false},
        {"BadLevel", [](Zip zip) { open(zip, "n", -2); }, s_notOpened + "-2", false},
        {"WriteNull", [](Zip zip) { zip.writeInFileInZip(nullptr, 1); }, s_notWritten, true},
    };
    writeTree({{"f", ""}});
    for (FailureRow const& row : rows)
    {
        SCOPED_TRACE(row.m_name);
        m_archive.create("out.zip");
        open(m_archive, "first");
        EXPECT_EQ(row.m_text, raisedBy([&] { row.m_call(m_archive); }).at(0));
        EXPECT_EQ(row.m_keepsEntry, raisedBy([&] { write(m_archive, "x"); }).empty());
    }
}

TEST_F(ARXZipFileTest, CallsNeedAnArchiveOrAnEntry)
{
    std::string const noFile = "ARXException: No file currently open in zip file.";
    EXPECT_EQ("NEBAssertError: NEB_ASSERT(m_zipFile != NULL);",
              raisedBy([&] { open(m_archive, "n"); }).at(0));
    EXPECT_EQ(noFile, raisedBy([&] { write(m_archive, "x"); }).at(0));
    EXPECT_EQ(noFile, raisedBy([&] { m_archive.closeFileInZip(); }).at(0));
}

TEST_F(ARXZipFileTest, ReportsAFullDisk)
{
    m_archive.create("/dev/full");
    open(m_archive, "n", 0);
    EXPECT_EQ(s_notWritten, raisedBy([&] { write(m_archive, std::string(500000, 'x')); }).at(0));
}

TEST_F(ARXZipFileTest, NamesFollowTheBase)
{
    std::string const b(10000, 'b');
    writeTree({{"t/a", ""}, {"t/sub/b", b}});
    auto const added = [&](char const* dir, char const* base, bool recursive, bool resolve)
    {
        m_archive.create("out.zip");
        m_archive.addDirectory(dir, base, recursive, resolve);
        m_archive.close();
        return readStream(ARXZipInputStream("out.zip"));
    };
    EXPECT_EQ((Tree{{"a", ""}, {"sub/b", b}}), added("t", nullptr, true, false));
    EXPECT_EQ((Tree{{"a", ""}}), added("t", nullptr, false, false));
    EXPECT_EQ((Tree{{"a", ""}, {"b", b}}), added("t", "", true, false));
    EXPECT_EQ((Tree{{"t/sub/b", b}}), added(".\\t\\sub", ".", true, false));
    EXPECT_EQ((Tree{{"a", ""}, {"sub/b", b}}), added("t/../t", "t", true, true));
}

TEST_F(ARXZipFileTest, SkipsWhatHasTheArchivesPathInIts)
{
    writeTree({{"t/a", ""}, {"t/out.zip.bak", ""}});
    m_archive.addDirectory("t", nullptr, true, false);  // before any create: the empty name is in every path
    m_archive.create("t/out.zip");
    m_archive.addDirectory(I18NString("t"), I18NString(""), true, false);
    m_archive.close();
    m_archive.addFile("t/out.zip", "");
    EXPECT_EQ((Tree{{"a", ""}}), readStream(ARXZipInputStream("t/out.zip")));
}

timespec const s_lastAccess = {1600000000, 123456789};
std::time_t constexpr s_notSet = -1;

void setTimes(std::time_t modified)
{
    timespec const times[] = {s_lastAccess, {modified, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, "f", times, 0));
}

// Extracts f over an older file, whose last access stays. Returns its time, or s_notSet for that of writing.
std::time_t extractedTime()
{
    setTimes(1600000000);
    ARXUnzipFile::unzip("out.zip", nullptr, false);
    struct stat status;
    EXPECT_EQ(0, stat("f", &status));
    EXPECT_EQ(s_lastAccess.tv_nsec, status.st_atim.tv_nsec);
    return status.st_mtime == status.st_ctime ? s_notSet : status.st_mtime;
}

struct DateRow
{
    char const* m_name;
    char const* m_zone;
    std::time_t m_time;
    std::time_t m_extracted;
};

// One process for all rows: the zone changes while it runs.
TEST_F(ARXZipFileTest, StoresDatesAsLocalTime)
{
    DateRow const rows[] = {
        {"HalfHourZone", "IST-5:30", 1700000001, 1700000000},  // 2023-11-15 03:43:20
        {"FirstSecondOfSummer", "EST5EDT,M3.2.0,M11.1.0", 1678604400, 1678604400},
        {"LastSecondsOf2107", "UTC0", 4354819198, 4354819198},
        {"First2108", "UTC0", 4354819200, sizeof(long) == 4 ? 315532800 : s_notSet},  // 1980-01-01
        {"Epoch", "UTC0", 0, 2524608000},                                             // 2050-01-01
    };
    for (DateRow const& row : rows)
    {
        SCOPED_TRACE(row.m_name);
        setenv("TZ", row.m_zone, 1);
        writeTree({{"f", "x"}});
        setTimes(row.m_time);
        m_archive.create("out.zip");
        m_archive.addFile("f", nullptr);
        m_archive.close();
        EXPECT_EQ(row.m_extracted, extractedTime());
    }
}

TEST_F(ARXZipFileTest, WhatIsNoDateIsNotSet)
{
    Patches const month0 = {{12, "\xD4\xB6\x11\x5A"}};
    Patches const isNotWhole = {{10, "\x08"}, {12, "\x6A\x1D\x6F\x57"}};  // not deflated, as it says
    for (Patches const& patches : {month0, isNotWhole})
    {
        writeTree({{"f", ""}});
        makeArchive({"f"}, patches);
        EXPECT_EQ(s_notSet, extractedTime());
    }
}

TEST_F(ARXZipFileTest, FinishesWhatIsOpenBeforeAnotherArchive)
{
    m_archive.create("one.zip");
    open(m_archive, "left open");
    write(m_archive, "1");
    m_archive.create("two.zip");
    EXPECT_EQ((Tree{{"left open", "1"}}), readStream(ARXZipInputStream("one.zip")));
}

TEST_F(ARXZipFileTest, RefusesAPieceThatTakesTheEntryPast4GiB)
{
    m_archive.create("out.zip");
    open(m_archive, "n");
    unsigned char byte = 'x';  // refused before more is read
    EXPECT_EQ(s_notWritten, raisedBy([&] { m_archive.writeInFileInZip(&byte, 0xFFFFFFFE); }).at(0));
}

// A sparse file plays an archive that has grown.
TEST_F(ARXZipFileTest, RefusesWhatTakesTheArchivePast4GiB)
{
    m_archive.create("out.zip");
    open(m_archive, "n");
    std::filesystem::resize_file("out.zip", 0xFFE00000);
    write(m_archive, "x");
    std::filesystem::resize_file("out.zip", 0xFFF00000);
    EXPECT_EQ(s_notWritten, raisedBy([&] { write(m_archive, "x"); }).at(0));
    EXPECT_EQ(s_notOpened + "-102", raisedBy([&] { open(m_archive, "next"); }).at(0));
}

// docs/zip.md explains these bytes. An empty file is deflated to the same two bytes by every zlib.
TEST_F(ARXZipFileTest, WritesTheSameBytesEverywhere)
{
    setenv("TZ", "IST-5:30", 1);
    writeTree({{"f", ""}});
    setTimes(1700000001);
    I18NString const comment("c\xC3\xA9");
    m_archive.create(I18NString("out.zip"));
    m_archive.openNewFileInZip("a/\xC3\xA9", nullptr, &comment, static_cast<ARXZipFile::compressMethod_t>(8),
                               6);
    write(m_archive, "12345");
    m_archive.writeInFileInZip(nullptr, 0);  // leaves the running checksum alone
    m_archive.addFile(I18NString(".\\f"), I18NString("."));
    m_archive.close();
    std::string hex;
    for (char const c : readAll("out.zip"))
    {
        unsigned const byte = static_cast<unsigned char>(c);
        hex += {"0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]};
    }
    EXPECT_EQ(
        "504b0304140000000000000000001c3af5cb050000000500000004000000612fc3a93132333435"
        "504b03041400000008006a1d6f5700000000020000000000000001000000660300"
        "504b01020000140000000000000000001c3af5cb0500000005000000040000000300000000000000000000000000612fc3a9"
        "63c3a9"
        "504b010200001400000008006a1d6f570000000002000000000000000100000000000000000000000000270000006"
        "6504b0506000000000200020064000000480000000000",
        hex);
}
}  // namespace
