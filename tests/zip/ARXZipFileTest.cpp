#include "zip/ARXZipFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "zip/ZipTools.h"

namespace
{
using Zip = ARXZipFile&;

void open(Zip archive, char const* name, int level = 6)
{
    archive.openNewFileInZip(name, nullptr, nullptr, ARXZipFile::compressDeflated, level);
}

std::string namesIn(char const* archive)
{
    std::string names, name;
    ARXZipInputStream stream(archive);
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
        names += (stream.getCurrentEntryName(name), name) + " ";
    return names;
}

struct ARXZipFileTest : ZipTest
{
    ARXZipFile m_archive;
};

// What the object shows of its state: closed, archive open or entry open. The question ends it.
char stateOf(Zip archive)
{
    bool const isEntry = failureOf([&] { write(archive, "x"); }) == "none";
    return isEntry ? 'E' : failureOf([&] { open(archive, "new"); }) == "none" ? 'A' : 'C';
}

#define NAME_NULL "NEB_ASSERT(fileName != NULL);"
#define FAILED(code) \
    "ARXException: Unable to open new file in zip file: \n" code " ARXZipFile::openNewFileInZip"
#define NO_FILE "ARXException: No file currently open in zip file. ARXZipFile::"

TEST_F(ARXZipFileTest, FailuresHaveTheirTextsAndLeaveTheirStates)
{
    static char const* const s_null = nullptr;
    static std::string const s_long(65536, 'n');
    std::tuple<std::string, std::string, void (*)(Zip)> const failures[] = {
        {"EE", NAME_NULL, [](Zip z) { z.create(s_null); }},
        {"EC", "ARXException: Unable to create zip file: \n/dev/null/x ARXZipFile::initialize",
         [](Zip z) { z.create("/dev/null/x"); }},
        {"EE", "NEB_ASSERT(fileName);", [](Zip z) { z.addFile(nullptr, ""); }},
        {"EE", "NEB_ASSERT(exists);", [](Zip z) { z.addFile("missing", ""); }},
        {"EE", "NEB_ASSERT(exists);", [](Zip z) { z.addFile("folder", ""); }},
        {"EA", "NEB_ASSERT(0 < strlen(fileName));", [](Zip z) { z.addFile("file", "file"); }},
        {"CC", "NEB_ASSERT(m_zipFile != NULL);", [](Zip z) { z.addFile("file", ""); }},
        {"EE", NAME_NULL, [](Zip z) { open(z, s_null); }},
        {"EA", FAILED("-102"), [](Zip z) { open(z, s_long.c_str()); }},
        {"EA", FAILED("-2"), [](Zip z) { open(z, "n", -2); }},
        {"AA", NO_FILE "writeInFileInZip", [](Zip z) { write(z, "x"); }},
        {"EE", "NEB_ASSERT(nRet == ZIP_OK);", [](Zip z) { z.writeInFileInZip(nullptr, 1); }},
        {"AA", NO_FILE "closeFileInZip", [](Zip z) { z.closeFileInZip(); }}};
    writeTree({{"file", ""}, {"folder/", ""}});
    for (auto const& [states, text, call] : failures)
    {
        m_archive.create("out.zip");
        if (states[0] == 'E')
            open(m_archive, "first");
        else if (states[0] == 'C')
            m_archive.close();
        EXPECT_EQ(text + " x1", failureOf([&, &call = call] { call(m_archive); }));
        EXPECT_EQ(states[1], stateOf(m_archive)) << text;
    }
}

TEST_F(ARXZipFileTest, NamesFollowTheBaseAndTheFlags)
{
    writeTree({{"t/a", ""}, {"t/sub/a", ""}});
    auto const add = [&](char const* dir, char const* base, bool recursive, bool resolve)
    {
        m_archive.create(I18NString("out.zip"));
        open(m_archive, "0");
        m_archive.addDirectory(dir, base, recursive, resolve);
        if (base)
            m_archive.addDirectory(I18NString("t"), I18NString(base), false, false);
        m_archive.addFile(I18NString("t\\sub\\a"), I18NString("t"));
        m_archive.close();
        return namesIn("out.zip");
    };
    EXPECT_EQ("0 a sub/a sub/a ", add("t", nullptr, true, false));
    EXPECT_EQ("0 a sub/a ", add("t", nullptr, false, false));
    EXPECT_EQ("0 a a a sub/a ", add("t", "", true, false));
    EXPECT_EQ("0 t/a t/sub/a a sub/a ", add(".\\t", ".", true, false));
    EXPECT_EQ("0 a sub/a a sub/a ", add("t/../t", "t", true, true));
    EXPECT_EQ("0 sub/a ", add("missing", nullptr, true, false));
}

TEST_F(ARXZipFileTest, TheArchiveItselfIsSkippedByItsPathAndEndsByAnother)
{
    writeTree({{"t/out.zip.bak", ""}});
    ASSERT_TRUE(run("head -c 400000 /dev/urandom >t/a"));
    m_archive.addDirectory("t", nullptr, true, false);  // before any create: the empty name is in every path
    m_archive.create("t/out.zip");
    m_archive.addDirectory("t", nullptr, true, false);
    m_archive.close();
    m_archive.addFile("t/out.zip", "");
    EXPECT_EQ("a ", namesIn("t/out.zip"));

    m_archive.create("t/../t/out.zip");
    m_archive.addDirectory("t", nullptr, true, true);
    m_archive.close();
    EXPECT_EQ("a out.zip out.zip.bak ", namesIn("t/out.zip"));
    EXPECT_TRUE(run("unzip -t t/out.zip"));
}

TEST_F(ARXZipFileTest, DatesAreLocalTimeAndComeBackAloneOrNotAtAll)
{
    if (access("/dev/shm", W_OK) != 0)
        GTEST_SKIP() << "there is no /dev/shm, and other file systems hold fewer years";
    setenv("TMPDIR", "/dev/shm", 0);
    TemporaryFolder const folder;
    unsetenv("TMPDIR");
    CurrentFolder const current(folder.path());
    struct stat status;
    auto const setTimes = [](std::time_t time)
    {
        timespec const times[] = {{time, 123456789}, {time, 0}};
        ASSERT_EQ(0, utimensat(AT_FDCWD, "f", times, 0));
    };
    auto const unzip = [&]
    {
        setTimes(1600000000);
        ASSERT_TRUE(ARXUnzipFile::unzip("out.zip", nullptr, false) && stat("f", &status) == 0);
        EXPECT_TRUE(status.st_atim.tv_sec == 1600000000 && status.st_atim.tv_nsec == 123456789);
    };
    char const* const newYork = "EST5EDT,M3.2.0,M11.1.0";
    std::tuple<char const*, std::time_t, unsigned, std::time_t> const dates[] = {
        {"IST-5:30", 1700000001, 0x576F1D6A, 1700000000},  // 2023-11-15 03:43:20
        {newYork, 1678604398, 0x566C0F7D, 1678604398},     // 2023-03-12 01:59:58, and then
        {newYork, 1678604400, 0x566C1800, 1678604400},     // 03:00:00
        {newYork, 1699167600, 0x57651000, 1699167600},     // 2023-11-05 02:00:00, after 01:00:00 came twice
        {"UTC0", 4102444800, 0xF0210000, 4102444800},      // 2100-01-01
        {"UTC0", 0, 0x8C210000, 2524608000},               // comes out as 2050-01-01
        {"UTC0", INT64_MAX / 2, 0x00210000, 315532800}};   // as 1980-01-01
    for (auto const& [zone, time, dosDate, back] : dates)
    {
        setenv("TZ", zone, 1);
        writeTree({{"f", "x"}});
        setTimes(time);
        m_archive.create("out.zip"), m_archive.addFile("f", nullptr), m_archive.close();
        ARXZipInputStream::zipEntry entry;
        ARXZipInputStream("out.zip").getCurrentEntryInfo(entry);
        unzip();
        EXPECT_TRUE(entry.dosDate == dosDate && status.st_mtime == back) << zone << time;
    }
    // 30 February, month 0, and hour 24 are no dates: the time of the writing stays.
    for (char const* date : {"\xD4\xB6\x5E\x5A", "\xD4\xB6\x11\x5A", "\xD4\xC6\x51\x5A"})
    {
        makeArchive({"f"}, {{12, date}});
        unzip();
        EXPECT_EQ(status.st_ctime, status.st_mtime);
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
        open(archive, "deflated"), write(archive, "12345");
        archive.create("two.zip");
        open(archive, "left open");
    }
    EXPECT_TRUE(run("unzip -t one.zip && unzip -t two.zip"));
    EXPECT_EQ((Tree{{"stored", "12345"}, {"deflated", "12345"}}), readStream(ARXZipInputStream("one.zip")));
    EXPECT_EQ(0, readAll("one.zip")[8]);  // the first entry's method

    m_archive.create("/dev/full");
    open(m_archive, "n", 0);
    EXPECT_EQ("NEB_ASSERT(nRet == ZIP_OK); x1",
              failureOf([&] { write(m_archive, std::string(500000, 'x')); }));
    EXPECT_EQ("none", failureOf([&] { m_archive.close(); }));
}
}  // namespace
