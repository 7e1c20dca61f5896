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

TEST(ARXZipInputStream, FailuresHaveTheirTextsThroughEachLevel)
{
    std::string const noFile = "NEB_ASSERT_NAMED(m_fileHandle, \"Unable to open file\"); x2",
                      noZip = "NEB_ASSERT_NAMED(m_zipFile, \"Unable to open zip file.\"); x";
    FilePtr const empty(std::fopen("/dev/null", "rb"), std::fclose);
    std::pair<std::string, std::function<void()>> const failures[] = {
        {noFile, [] { Stream("/dev/null/x"); }},
        {noFile, [] { Stream(static_cast<char const*>(nullptr)); }},
        {noZip + "4", [] { Stream("/dev/null"); }},
        {noZip + "3", [&] { Stream(empty.get()); }},
        {noZip + "3", [] { Stream("x", 1); }},
        {noZip + "2", [] { Stream(&tableOver(&s_buffer)); }},
        {"NEB_ASSERT(pFile); x3", [] { Stream(static_cast<std::FILE*>(nullptr)); }},
        {"NEB_ASSERT_NAMED(pBuffer, \"Input stream may not be null\"); x2", [] { Stream(nullptr, 1); }},
        {"NEB_ASSERT_NAMED(size > 0, \"Input stream may not be empty.\"); x2", [] { Stream("x", 0); }},
        {"NEB_ASSERT(pZipCharBuffer); x1", [] { tableOver(nullptr).zopen_file(nullptr, nullptr, 0); }},
        {"NEB_ASSERT(buf); x1", [] { tableOver(nullptr).zread_file(nullptr, &s_buffer, nullptr, 1); }},
        {"NEB_ASSERT_NAMED(false, \"Cannot write to const char* buffer\"); x1",
         [] { tableOver(nullptr).zwrite_file(nullptr, &s_buffer, "x", 1); }}};
    for (auto const& [text, call] : failures)
        EXPECT_EQ(text, failureOf(call));
}

TEST(ARXZlibConstCharIO, SeeksOntoItsBytesAlone)
{
    // Where from, offset, origin, and where to; -1 for what is refused.
    long const seeks[][4] = {{3, 0, 0, 0},   {0, 4, 0, 4},   {3, 5, 0, -1}, {3, -1, 0, -1}, {1, 3, 1, 4},
                             {1, 4, 1, -1},  {5, 0, 1, -1},  {3, -1, 1, 2}, {1, 0, 2, 4},   {1, 1, 2, -1},
                             {1, -1, 2, -1}, {0, -1, 1, -1}, {2, 0, 3, -1}, {2, 0, -1, -1}};
    zlib_filefunc_def_s const& table = tableOver(&s_buffer);
    for (auto const& [from, offset, origin, to] : seeks)
    {
        s_buffer.m_position = static_cast<std::size_t>(from);
        EXPECT_EQ(to < 0 ? -1 : 0,
                  table.zseek_file(nullptr, &s_buffer, static_cast<uLong>(offset), static_cast<int>(origin)));
        EXPECT_EQ(to < 0 ? from : to, table.ztell_file(nullptr, &s_buffer)) << from << offset << origin;
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

// A host's table over memory that counts its open streams. The n-th of its reads and seeks raises.
struct RaisingTable : zlib_filefunc_def_s
{
    RaisingTable(std::string const& bytes, int n) : m_buffer{bytes.data(), bytes.size(), 0}, m_callsLeft(n)
    {
        fillZlibConstCharIO(this, &m_buffer);
        m_memory = *this;
        opaque = this;
        zopen_file = [](voidpf self, char const* name, int mode)
        { return of(self).m_memory.zopen_file(of(self).changeOpen(1), name, mode); };
        zclose_file = [](voidpf self, voidpf) { return of(self).changeOpen(-1) ? 0 : -1; };
        zread_file = [](voidpf self, voidpf stream, void* buf, uLong size)
        { return of(self).countCall().zread_file(nullptr, stream, buf, size); };
        zseek_file = [](voidpf self, voidpf stream, uLong offset, int origin)
        { return of(self).countCall().zseek_file(nullptr, stream, offset, origin); };
    }
    static RaisingTable& of(voidpf self) { return *static_cast<RaisingTable*>(self); }
    ZipCharBuffer* changeOpen(int by)
    {
        m_open += by;
        return &m_buffer;
    }
    zlib_filefunc_def_s& countCall()
    {
        if (--m_callsLeft == 0)
            throw std::runtime_error("raised");
        return m_memory;
    }

    zlib_filefunc_def_s m_memory;
    ZipCharBuffer m_buffer;
    int m_callsLeft;
    int m_open = 0;
};

// Every call of a walk raises once. The second round must need no more memory than the first.
TEST_F(ARXZipInputStreamTest, AnExceptionOfAHostsTableLeavesNothingBehind)
{
    makeArchive({"first", "second"});
    std::string const bytes = readAll("out.zip");
    std::size_t memory[2];
    for (std::size_t& used : memory)
    {
        std::string raised = "raised";
        for (int n = 1; raised != "none"; ++n)
        {
            RaisingTable table(bytes, n);
            raised = failureOf([&] { EXPECT_EQ(2u, readStream(Stream(&table)).size()); });
            EXPECT_TRUE(raised == "none" || raised.find("raised") != std::string::npos) << raised;
            EXPECT_EQ(0, table.m_open) << n;
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
        makeArchive({"a/b", std::string(length, 'n'), "behind"});
        Stream stream("out.zip");
        std::string name;
        Stream::zipEntry entry;
        EXPECT_TRUE(stream.locate("a\\b") && stream.getCurrentEntryName(name) && name == "a/b" &&
                    stream.getNextEntry());
        EXPECT_EQ(length < 260 ? "none" : tooLong, failureOf([&] { stream.getCurrentEntryInfo(entry); }));
        EXPECT_EQ(length < 259 ? "none" : tooLong, failureOf([&] { stream.getCurrentEntryName(name); }));
        EXPECT_EQ(length < 259 ? length : 3, name.size());
        EXPECT_EQ(length < 259 ? "none" : tooLong,
                  failureOf([&] { EXPECT_FALSE(stream.locate("Behind") || stream.locate("")); }));
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
    framework.close(), framework.close();
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
