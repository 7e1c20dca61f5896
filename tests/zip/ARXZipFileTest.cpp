#include "zip/ARXZipFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "zip/ZipTools.h"

namespace
{
void open(ARXZipFile& archive, char const* name, int level = 6)
{
    archive.openNewFileInZip(name, nullptr, nullptr, ARXZipFile::compressDeflated, level);
}

Names namesIn(char const* archive)
{
    Names names;
    ARXZipInputStream stream(archive);
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
        stream.getCurrentEntryName(names.emplace_back());
    return names;
}

struct ARXZipFileTest : ZipTest
{
    ARXZipFile m_archive;
};

enum State
{
    closed,
    ready,   // an archive is open
    inEntry  // and an entry
};

// The question ends the state.
State stateOf(ARXZipFile& archive)
{
    if (failureOf([&] { write(archive, "x"); }) == "none")
        return inEntry;
    return failureOf([&] { open(archive, "new"); }) == "none" ? ready : closed;
}

struct FailureRow
{
    char const* m_name;
    State m_before;
    void (*m_call)(ARXZipFile&);
    std::string m_text;
    State m_after;
};
struct FailureOfAZipFile : ARXZipFileTest, testing::WithParamInterface<FailureRow>
{
};

TEST_P(FailureOfAZipFile, HasItsTextAndLeavesItsState)
{
    writeTree({{"file", ""}, {"folder/", ""}});
    m_archive.create("out.zip");
    if (GetParam().m_before == inEntry)
        open(m_archive, "first");
    else if (GetParam().m_before == closed)
        m_archive.close();
    EXPECT_EQ(GetParam().m_text + " x1", failureOf([&] { GetParam().m_call(m_archive); }));
    EXPECT_EQ(GetParam().m_after, stateOf(m_archive));
}

char const* const s_null = nullptr;
std::string const s_tooLong(65536, 'n');
std::string const s_nameNull = "NEB_ASSERT(fileName != NULL);";
std::string const s_noFile = "ARXException: No file currently open in zip file. ARXZipFile::";

std::string notOpened(char const* code)
{
    return std::string("ARXException: Unable to open new file in zip file: \n") + code +
           " ARXZipFile::openNewFileInZip";
}

using Zip = ARXZipFile&;
FailureRow const s_failures[] = {
    {"CreateNull", inEntry, [](Zip z) { z.create(s_null); }, s_nameNull, inEntry},
    {"CreateNowhere", inEntry, [](Zip z) { z.create("/dev/null/x"); },
     "ARXException: Unable to create zip file: \n/dev/null/x ARXZipFile::initialize", closed},
    {"AddNull", inEntry, [](Zip z) { z.addFile(nullptr, ""); }, "NEB_ASSERT(fileName);", inEntry},
    {"AddMissing", inEntry, [](Zip z) { z.addFile("missing", ""); }, "NEB_ASSERT(exists);", inEntry},
    {"AddFolder", inEntry, [](Zip z) { z.addFile("folder", ""); }, "NEB_ASSERT(exists);", inEntry},
    {"AddNameless", inEntry, [](Zip z) { z.addFile("file", "file"); }, "NEB_ASSERT(0 < strlen(fileName));",
     ready},
    {"AddToNothing", closed, [](Zip z) { z.addFile("file", ""); }, "NEB_ASSERT(m_zipFile != NULL);", closed},
    {"OpenNull", inEntry, [](Zip z) { open(z, s_null); }, s_nameNull, inEntry},
    {"OpenTooLong", inEntry, [](Zip z) { open(z, s_tooLong.c_str()); }, notOpened("-102"), ready},
    {"OpenWithABadLevel", inEntry, [](Zip z) { open(z, "n", -2); }, notOpened("-2"), ready},
    {"WriteToNothing", ready, [](Zip z) { write(z, "x"); }, s_noFile + "writeInFileInZip", ready},
    {"WriteNull", inEntry, [](Zip z) { z.writeInFileInZip(nullptr, 1); }, "NEB_ASSERT(nRet == ZIP_OK);",
     inEntry},
    {"CloseNothing", ready, [](Zip z) { z.closeFileInZip(); }, s_noFile + "closeFileInZip", ready},
};
INSTANTIATE_TEST_SUITE_P(Failures, FailureOfAZipFile, testing::ValuesIn(s_failures), RowName());

TEST_F(ARXZipFileTest, NamesFollowTheBase)
{
    writeTree({{"t/a", ""}, {"t/sub/b", ""}});
    auto const added = [&](char const* dir, char const* base, bool recursive, bool resolve)
    {
        m_archive.create("out.zip");
        open(m_archive, "first");
        m_archive.addDirectory(dir, base, recursive, resolve);
        m_archive.close();
        Names const names = namesIn("out.zip");
        return Names(names.begin() + 1, names.end());
    };
    EXPECT_EQ((Names{"a", "sub/b"}), added("t", nullptr, true, false));
    EXPECT_EQ((Names{"a"}), added("t", nullptr, false, false));
    EXPECT_EQ((Names{"a", "b"}), added("t", "", true, false));
    EXPECT_EQ((Names{"t/sub/b"}), added(".\\t\\sub", ".", true, false));
    EXPECT_EQ((Names{"a", "sub/b"}), added("t/../t", "t", true, true));
    EXPECT_EQ((Names{}), added("missing", nullptr, true, false));
}

TEST_F(ARXZipFileTest, SkipsWhatHasTheArchivesPathInIts)
{
    writeTree({{"t/a", ""}, {"t/out.zip.bak", ""}});
    m_archive.addDirectory("t", nullptr, true, false);  // before any create: the empty name is in every path
    m_archive.create("t/out.zip");
    m_archive.addDirectory(I18NString("t"), I18NString(""), true, false);
    m_archive.close();
    m_archive.addFile("t/out.zip", "");
    EXPECT_EQ(Names{"a"}, namesIn("t/out.zip"));
}

TEST_F(ARXZipFileTest, EndsWhereItAddsItselfByAnotherPath)
{
    writeTree({{"t/a", ""}});
    m_archive.create("t/../t/out.zip");
    m_archive.addDirectory("t", nullptr, true, true);
    m_archive.close();
    EXPECT_EQ((Names{"a", "out.zip"}), namesIn("t/out.zip"));
    EXPECT_TRUE(run("unzip -t t/out.zip"));
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
    EXPECT_TRUE(ARXUnzipFile::unzip("out.zip", nullptr, false));
    struct stat status
    {
    };
    EXPECT_EQ(0, stat("f", &status));
    EXPECT_EQ(s_lastAccess.tv_nsec, status.st_atim.tv_nsec);
    return status.st_mtime == status.st_ctime ? s_notSet : status.st_mtime;
}

struct DateRow
{
    char const* m_name;
    char const* m_zone;
    std::time_t m_time;
    unsigned m_dosDate;
    std::time_t m_extracted;
};

// One process for all rows: the zone changes while it runs.
TEST_F(ARXZipFileTest, StoresDatesAsLocalTime)
{
    char const* const newYork = "EST5EDT,M3.2.0,M11.1.0";
    DateRow const rows[] = {
        {"HalfHourZone", "IST-5:30", 1700000001, 0x576F1D6A, 1700000000},  // 2023-11-15 03:43:20
        {"NegativeHalfHourZone", "NST3:30", 1700000000, 0x576E956A, 1700000000},
        {"LastSecondsOfWinter", newYork, 1678604398, 0x566C0F7D, 1678604398},
        {"FirstSecondOfSummer", newYork, 1678604400, 0x566C1800, 1678604400},
        {"AfterAnHourThatCameTwice", newYork, 1699167600, 0x57651000, 1699167600},
        {"NoLeapDayIn2100", "UTC0", 4107542400, 0xF0610000, 4107542400},
        {"LastSecondsOf2107", "UTC0", 4354819198, 0xFF9FBF7D, 4354819198},
        {"First2108", "UTC0", 4354819200, 0xFFFFFFFF, s_notSet},
        {"Epoch", "UTC0", 0, 0x8C210000, 2524608000},  // 2050-01-01
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
        ARXZipInputStream::zipEntry entry;
        ARXZipInputStream("out.zip").getCurrentEntryInfo(entry);
        EXPECT_EQ(row.m_dosDate, entry.dosDate);
        EXPECT_EQ(row.m_extracted, extractedTime());
    }
}

TEST_F(ARXZipFileTest, WhatIsNoDateIsNotSet)
{
    // 30 February, month 0, hour 24.
    for (char const* date : {"\xD4\xB6\x5E\x5A", "\xD4\xB6\x11\x5A", "\xD4\xC6\x51\x5A"})
    {
        writeTree({{"f", ""}});
        makeArchive({"f"}, {{12, date}});
        EXPECT_EQ(s_notSet, extractedTime());
    }
}

TEST_F(ARXZipFileTest, FinishesWhatIsOpenBeforeWhatComesNext)
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
    }
    EXPECT_TRUE(run("unzip -t one.zip && unzip -t two.zip"));
    EXPECT_EQ((Tree{{"stored", "12345"}, {"deflated", "12345"}}), readStream(ARXZipInputStream("one.zip")));
    EXPECT_EQ(0, readAll("one.zip")[8]);  // the first entry's method
}

TEST_F(ARXZipFileTest, ReportsAFullDisk)
{
    m_archive.create("/dev/full");
    open(m_archive, "n", 0);
    EXPECT_EQ("NEB_ASSERT(nRet == ZIP_OK); x1",
              failureOf([&] { write(m_archive, std::string(500000, 'x')); }));
    EXPECT_EQ("none", failureOf([&] { m_archive.close(); }));
}

TEST_F(ARXZipFileTest, RefusesAPieceThatTakesTheEntryPast4GiB)
{
    unsigned constexpr size = 0xFFFFFFFE;
    int const flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    auto* const data = static_cast<unsigned char*>(mmap(nullptr, size, PROT_READ, flags, -1, 0));
    m_archive.create("out.zip");
    open(m_archive, "n", 1);
    write(m_archive, "x");
    EXPECT_EQ("NEB_ASSERT(nRet == ZIP_OK); x1", failureOf([&] { m_archive.writeInFileInZip(data, size); }));
    munmap(data, size);
}

// A sparse file stands for an archive that has grown.
TEST_F(ARXZipFileTest, RefusesWhatTakesTheArchivePast4GiB)
{
    m_archive.create("out.zip");
    open(m_archive, "n");
    std::filesystem::resize_file("out.zip", 0xFFE00000);
    write(m_archive, "x");
    std::filesystem::resize_file("out.zip", 0xFFF00000);
    EXPECT_EQ("NEB_ASSERT(nRet == ZIP_OK); x1", failureOf([&] { write(m_archive, "x"); }));
    EXPECT_EQ(notOpened("-102") + " x1", failureOf([&] { open(m_archive, "next"); }));
}

// docs/zip.md explains these bytes. An empty file is deflated to the same two bytes by every zlib.
TEST_F(ARXZipFileTest, WritesTheSameBytesEverywhere)
{
    setenv("TZ", "IST-5:30", 1);
    writeTree({{"f", ""}});
    setTimes(1700000001);
    I18NString const comment("c\xC3\xA9");
    m_archive.create(I18NString("out.zip"));
    m_archive.openNewFileInZip("a/\xC3\xA9", nullptr, &comment, ARXZipFile::compressStored, 0);
    write(m_archive, "12345");
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
