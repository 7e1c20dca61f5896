#include "zip/ARXZipInputStream.h"

#include <fcntl.h>
#include <malloc.h>

#include <minizip/ioapi.h>

#include "NEBCore/NEBByteBuffer.h"
#include "zip/ARXZipInputStreamFramework.h"
#include "zip/ARXZlibConstCharIO.h"
#include "zip/ZipTools.h"

namespace
{
using Stream = ARXZipInputStream;

std::size_t constexpr s_end = OJDInputStream::s_end;
ZipCharBuffer s_buffer = {"abcde", 5, 0};

zlib_filefunc_def_s& tableOver(ZipCharBuffer* buffer)
{
    static zlib_filefunc_def_s s_table;
    fillZlibConstCharIO(&s_table, buffer);
    return s_table;
}

#define NO_FILE "NEB_ASSERT_NAMED(m_fileHandle, \"Unable to open file\");"
#define NO_ARCHIVE "NEB_ASSERT_NAMED(m_zipFile, \"Unable to open zip file.\");"

struct FailureRow
{
    char const* m_name;
    std::function<void()> m_call;
    char const* m_text;  // and the number of places that the error passed
};

TEST(ARXZipInputStream, FailuresHaveTheirTextsThroughEachLevel)
{
    FilePtr const empty(std::fopen("/dev/null", "rb"), std::fclose);
    zlib_filefunc_def_s* const noTable = nullptr;
    std::FILE* const noFile = nullptr;
    char const* const noName = nullptr;
    zlib_filefunc_def_s const& table = tableOver(nullptr);
    FailureRow const rows[] = {
        {"MissingFile", [] { Stream("/dev/null/x"); }, NO_FILE " x2"},
        {"NullName", [&] { Stream{noName}; }, NO_FILE " x2"},
        {"EmptyNamedFile", [] { Stream("/dev/null"); }, NO_ARCHIVE " x4"},
        {"EmptyFile", [&] { Stream{empty.get()}; }, NO_ARCHIVE " x3"},
        {"OneByte", [] { Stream("x", 1); }, NO_ARCHIVE " x3"},
        {"NullTable", [&] { Stream{noTable}; }, NO_ARCHIVE " x2"},
        {"TableOfNoArchive", [] { Stream(&tableOver(&s_buffer)); }, NO_ARCHIVE " x2"},
        {"NullFile", [&] { Stream{noFile}; }, "NEB_ASSERT(pFile); x3"},
        {"NullMemory", [&] { Stream(noName, 1); },
         "NEB_ASSERT_NAMED(pBuffer, \"Input stream may not be null\"); x2"},
        {"NoMemory", [] { Stream("x", 0); },
         "NEB_ASSERT_NAMED(size > 0, \"Input stream may not be empty.\"); x2"},
        {"OpenNull", [&] { table.zopen_file(nullptr, "", 0); }, "NEB_ASSERT(pZipCharBuffer); x1"},
        {"ReadToNull", [&] { table.zread_file(nullptr, &s_buffer, nullptr, 1); }, "NEB_ASSERT(buf); x1"},
        {"Write", [&] { table.zwrite_file(nullptr, &s_buffer, "x", 1); },
         "NEB_ASSERT_NAMED(false, \"Cannot write to const char* buffer\"); x1"}};
    for (FailureRow const& row : rows)
        EXPECT_EQ(row.m_text, failureOf(row.m_call)) << row.m_name;
}

struct SeekRow
{
    std::size_t m_from;
    long m_offset;
    int m_origin;
    long m_to;  // -1 for a seek that is refused
};

TEST(ARXZlibConstCharIO, SeeksOntoItsBytesAlone)
{
    int const set = ZLIB_FILEFUNC_SEEK_SET, current = ZLIB_FILEFUNC_SEEK_CUR, end = ZLIB_FILEFUNC_SEEK_END;
    SeekRow const rows[] = {{3, 0, set, 0},      {0, 4, set, 4},       {3, 5, set, -1},
                            {3, -1, set, -1},    {1, 3, current, 4},   {1, 4, current, -1},
                            {3, -1, current, 2}, {0, -1, current, -1}, {5, 0, current, -1},
                            {1, 0, end, 4},      {1, 1, end, -1},      {1, -1, end, -1},
                            {2, 0, 3, -1},       {2, 0, -1, -1}};
    zlib_filefunc_def_s const& table = tableOver(&s_buffer);
    for (SeekRow const& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.m_offset << " from " << row.m_from << ", " << row.m_origin);
        bool const isRefused = row.m_to < 0;
        s_buffer.m_position = row.m_from;
        uLong const offset = static_cast<uLong>(row.m_offset);
        EXPECT_EQ(isRefused ? -1 : 0, table.zseek_file(nullptr, &s_buffer, offset, row.m_origin));
        EXPECT_EQ(isRefused ? static_cast<long>(row.m_from) : row.m_to, table.ztell_file(nullptr, &s_buffer));
    }
}

using ARXZipInputStreamTest = ZipTest;

TEST_F(ARXZipInputStreamTest, AllFormsReadUpToTheEndAndNoFurther)
{
    makeArchive({"ab\xFFzy", "other"});
    Stream stream("out.zip");
    char buffer[10];
    NEBByteBuffer target(256, 256);
    auto const isAtEnd = [&]
    {
        return stream.read() == s_end && stream.read(buffer, 10) == s_end &&
               stream.read(target, 0) == s_end && stream.read(target, 10) == s_end &&
               stream.readFully(buffer, 1) == s_end;
    };
    EXPECT_TRUE(isAtEnd());
    for (std::string const expected : {"zy", "zyzy"})  // opening again starts again
    {
        ASSERT_TRUE(stream.getFirstEntry() && stream.openCurrentEntry());
        EXPECT_TRUE(stream.read(buffer, 0) == s_end && stream.readFully(buffer, 2) == 2 &&
                    stream.read() == 255);
        EXPECT_TRUE(stream.getNextEntry());  // the open entry stays open
        stream.close();                      // and this does nothing
        EXPECT_TRUE(stream.read(target, 1) == 1 && stream.readFully(target, 10) == 1 && isAtEnd() &&
                    isAtEnd());
        EXPECT_EQ("NEBOutOfMemoryError: ", failureOf([&] { stream.read(target, SIZE_MAX); }).substr(0, 21));
        EXPECT_EQ(expected, std::string(target.str(), target.pcount()));
    }
    EXPECT_EQ("NEB_ASSERT(buf); x1", failureOf([&] { stream.read(nullptr, 1); }));
    EXPECT_EQ("NEB_ASSERT_NAMED(name, \"[ARZipInputStreamFramwork::locateFile] Path cannot be null.\"); x1",
              failureOf([&] { stream.locate(nullptr); }));
    EXPECT_THROW(stream.reset(), char const*);
}

int s_open, s_readsLeft;

// A host's table over memory that counts its open streams. A read raises when no more are left.
zlib_filefunc_def_s raisingTable(ZipCharBuffer* buffer)
{
    static zlib_filefunc_def_s s_memory;
    zlib_filefunc_def_s table = s_memory = tableOver(buffer);
    table.zopen_file = [](voidpf opaque, char const*, int) { return ++s_open ? opaque : nullptr; };
    table.zclose_file = [](voidpf, voidpf) { return --s_open; };
    table.zread_file = [](voidpf, voidpf stream, void* bytes, uLong size)
    {
        if (s_readsLeft-- == 0)
            throw std::runtime_error("raised");
        return s_memory.zread_file(nullptr, stream, bytes, size);
    };
    return table;
}

// Each read of a walk raises once. A second round must need no more memory than the first.
TEST_F(ARXZipInputStreamTest, AnExceptionOfAHostsTableLeavesNothingBehind)
{
    makeArchive({"first", "second"});
    std::string const bytes = readAll("out.zip");
    std::size_t memory[2];
    for (std::size_t& used : memory)
    {
        std::string raised = "raised";
        for (int reads = 0; raised != "none"; ++reads)
        {
            ZipCharBuffer buffer = {bytes.data(), bytes.size(), 0};
            zlib_filefunc_def_s table = raisingTable(&buffer);
            s_readsLeft = reads;
            raised = failureOf([&] { EXPECT_EQ(2u, readStream(Stream(&table)).size()); });
            EXPECT_TRUE(raised == "none" || raised.find("raised") != std::string::npos) << raised;
            EXPECT_EQ(0, s_open) << reads;
        }
        used = mallinfo2().uordblks;
    }
    EXPECT_EQ(memory[0], memory[1]);
}

TEST_F(ARXZipInputStreamTest, ANamedFileIsClosedInChildProcesses)
{
    makeArchive({"a"});
    Stream const stream("out.zip");
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        std::error_code gone;
        bool const isArchive = std::filesystem::read_symlink(entry, gone).filename() == "out.zip";
        EXPECT_TRUE(!isArchive || fcntl(std::stoi(entry.path().filename()), F_GETFD) == FD_CLOEXEC);
    }
}

TEST_F(ARXZipInputStreamTest, NamesHaveLimitsAndEitherSeparator)
{
    std::string const tooLong =
        "NEB_ASSERT_NAMED((0 == szFileName[fileNameBufferSize-1]), \"File name is larger than data "
        "structure "
        "used to hold it.\"); x1";
    for (std::size_t const length : {258u, 259u, 260u})
    {
        makeArchive({"a/b", std::string(length, 'n'), "after"});
        Stream stream("out.zip");
        std::string name;
        Stream::zipEntry entry;
        EXPECT_TRUE(stream.locate("a\\b") && stream.getCurrentEntryName(name) && name == "a/b" &&
                    stream.getNextEntry());
        EXPECT_EQ(length < 260 ? "none" : tooLong, failureOf([&] { stream.getCurrentEntryInfo(entry); }));
        EXPECT_EQ(length < 259 ? "none" : tooLong, failureOf([&] { stream.getCurrentEntryName(name); }));
        EXPECT_EQ(length < 259 ? length : 3, name.size());
        EXPECT_EQ(length < 259 ? "none" : tooLong,
                  failureOf([&] { EXPECT_FALSE(stream.locate("After") || stream.locate("")); }));
    }
}

TEST_F(ARXZipInputStreamTest, SourcesOfTheCallerStayWithTheCaller)
{
    makeArchive({"12345"}, {{4, "\x15\3"}, {36, "\1\2\3\4\5\6"}});
    FilePtr const file(std::fopen("out.zip", "rb"), std::fclose);
    std::fseek(file.get(), 10, SEEK_SET);
    EXPECT_EQ((Tree{{"12345", "12345"}}), readStream(Stream(file.get())));
    std::rewind(file.get());
    EXPECT_EQ('P', std::fgetc(file.get()));

    std::string const bytes = readAll("out.zip");
    ZipCharBuffer buffer = {bytes.data(), bytes.size(), 0};
    ARXZipInputStreamFramework framework(&tableOver(&buffer));
    Stream stream(bytes.data(), bytes.size());
    EXPECT_TRUE(framework.openCurrentEntry() && stream.openCurrentEntry());
    framework.close();
    framework.close();
    std::string name;
    Stream::zipEntry entry;
    NEBByteBuffer target(256, 256);
    EXPECT_FALSE(framework.getFirstEntry() || framework.getNextEntry() || framework.locate("12345") ||
                 framework.getCurrentEntryName(name) || framework.getCurrentEntryInfo(entry) ||
                 framework.openCurrentEntry());
    EXPECT_EQ("NEB_ASSERT(m_zipFile); x1", failureOf([&] { framework.read(target, 0); }));
    EXPECT_TRUE(stream.read() == '1' && stream.getCurrentEntryInfo(entry));
    EXPECT_STREQ("12345", entry.szFileName);
    EXPECT_TRUE(entry.crc == 0xcbf53a1c && entry.compressedSize == 5 && entry.version == 0x0315);
    EXPECT_TRUE(entry.internalAttributes == 0x0201 && entry.externalAttributes == 0x06050403);
}
}  // namespace
