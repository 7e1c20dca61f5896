#include "zip/ARXZipInputStream.h"

#include <functional>
#include <memory>

#include <minizip/ioapi.h>

#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBOutOfMemoryError.h"
#include "zip/ARXZipInputStreamFramework.h"
#include "zip/ARXZlibConstCharIO.h"
#include "zip/ZipTools.h"

namespace
{
using Stream = ARXZipInputStream;

std::size_t constexpr s_end = OJDInputStream::s_end;

// minizip's table over bytes that stay the caller's.
struct MemoryTable : zlib_filefunc_def_s
{
    explicit MemoryTable(std::string_view bytes) : m_buffer{bytes.data(), bytes.size(), 0}
    {
        fillZlibConstCharIO(this, &m_buffer);
    }

    ZipCharBuffer m_buffer;
};

using ARXZipInputStreamTest = ZipTest;

// Each level that an error passes adds a place.
void expectFailure(std::string const& assertion, std::size_t places, std::function<void()> const& call)
{
    Lines const raised = raisedBy(call);
    EXPECT_EQ("NEBAssertError: NEB_ASSERT" + assertion, raised.at(0));
    EXPECT_EQ(places, raised.size() - 1) << assertion;
}

TEST_F(ARXZipInputStreamTest, SourcesThatAreNoneFailWithTheirTexts)
{
    zlib_filefunc_def_s* const noTable = nullptr;
    std::FILE* const noFile = nullptr;
    char* const nothing = nullptr;
    std::string const noNamedFile = "_NAMED(m_fileHandle, \"Unable to open file\");";
    std::string const noArchive = "_NAMED(m_zipFile, \"Unable to open zip file.\");";
    expectFailure(noNamedFile, 2, [] { Stream("/dev/null/x"); });
    expectFailure(noNamedFile, 2, [&] { Stream{nothing}; });
    expectFailure(noArchive, 4, [] { Stream("/dev/null"); });
    expectFailure(noArchive, 3, [] { Stream("x", 1); });
    expectFailure(noArchive, 2, [&] { Stream{noTable}; });
    expectFailure("(pFile);", 3, [&] { Stream{noFile}; });
    expectFailure("_NAMED(pBuffer, \"Input stream may not be null\");", 2, [&] { Stream(nothing, 1); });
    expectFailure("_NAMED(size > 0, \"Input stream may not be empty.\");", 2, [] { Stream("x", 0); });
}

TEST_F(ARXZipInputStreamTest, WrongCallsFailWithTheirTexts)
{
    makeArchive({"a"});
    Stream stream("out.zip");
    expectFailure("(buf);", 1, [&] { stream.read(nullptr, 1); });
    expectFailure("_NAMED(name, \"[ARZipInputStreamFramwork::locateFile] Path cannot be null.\");", 1,
                  [&] { stream.locate(nullptr); });
    EXPECT_THROW(stream.reset(), char const*);
}

TEST(ARXZlibConstCharIO, SeeksOntoItsBytesAlone)
{
    MemoryTable table("abcde");
    auto const seek = [&](uLong offset, int origin)
    { return table.zseek_file(nullptr, &table.m_buffer, offset, origin); };
    EXPECT_EQ(0, seek(4, ZLIB_FILEFUNC_SEEK_SET));
    EXPECT_EQ(-1, seek(5, ZLIB_FILEFUNC_SEEK_SET));
    EXPECT_EQ(-1, seek(1, ZLIB_FILEFUNC_SEEK_END));
    EXPECT_EQ(-1, seek(0, 3));  // no origin
    EXPECT_EQ(4u, table.m_buffer.m_position);
}

// An archive that another tool writes to a pipe: after other bytes, with folders, sizes after the contents.
TEST_F(ARXZipInputStreamTest, EverySourceReadsAlike)
{
    Tree const files = {{"a/b/c", "text"}, {"none", ""}, {"zeros", std::string(10000, '\0')}};
    writeTree(files, "t");
    ASSERT_TRUE(run("cd t && (echo front; zip -r - . | cat) >../out.zip"));
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen("out.zip", "rb"), std::fclose);
    std::fseek(file.get(), 10, SEEK_SET);
    std::string const bytes = readAll("out.zip");
    EXPECT_EQ(files, readStream(Stream(file.get())));
    EXPECT_EQ(files, readStream(Stream("out.zip")));
    EXPECT_EQ(files, readStream(Stream(bytes.data(), bytes.size())));
    std::rewind(file.get());
    EXPECT_EQ('f', std::fgetc(file.get()));  // the caller's file is still open
    EXPECT_TRUE(ARXUnzipFile::unzip("out.zip", "to", false));
    EXPECT_EQ(readTree("t"), readTree("to"));
}

TEST_F(ARXZipInputStreamTest, ReadsTheOpenEntryToItsEnd)
{
    makeArchive({"abc", "other"});
    Stream stream("out.zip");
    NEBByteBuffer target(16, 16);
    EXPECT_EQ(s_end, stream.read());  // no entry is open
    ASSERT_TRUE(stream.openCurrentEntry());
    EXPECT_TRUE(stream.getNextEntry());  // the open entry stays open
    stream.close();                      // and this does nothing
    EXPECT_EQ(s_end, stream.read(target, 0));
    EXPECT_EQ(1u, stream.read(target, 1));
    EXPECT_EQ(2u, stream.read(target, 10));
    EXPECT_EQ("abc", std::string(target.str(), target.pcount()));
    EXPECT_EQ(s_end, stream.read(target, 1));
    EXPECT_THROW(stream.read(target, SIZE_MAX), NEBOutOfMemoryError);
}

int s_open, s_readsLeft;
read_file_func s_readMemory;

// A table that counts its open streams. A read raises when no more are left.
void makeRaising(zlib_filefunc_def_s& table)
{
    s_readMemory = table.zread_file;
    table.zopen_file = [](voidpf opaque, char const*, int) { return ++s_open ? opaque : nullptr; };
    table.zclose_file = [](voidpf, voidpf) { return --s_open; };
    table.zread_file = [](voidpf opaque, voidpf stream, void* target, uLong size)
    {
        if (s_readsLeft-- == 0)
            throw std::runtime_error("raised");
        return s_readMemory(opaque, stream, target, size);
    };
}

// Each read of a walk raises once.
TEST_F(ARXZipInputStreamTest, AnExceptionOfAHostsTableLeavesNothingOpen)
{
    makeArchive({"first", "second"});
    std::string const bytes = readAll("out.zip");
    Lines raised = {"raised"};
    for (int reads = 0; !raised.empty(); ++reads)
    {
        MemoryTable table(bytes);
        makeRaising(table);
        s_readsLeft = reads;
        raised = raisedBy([&] { EXPECT_EQ(2u, readStream(Stream(&table)).size()); });
        ASSERT_THAT(joined(raised), testing::AnyOf("", testing::HasSubstr("raised")));
        EXPECT_EQ(0, s_open) << reads;
    }
}

TEST_F(ARXZipInputStreamTest, ANamedFileIsClosedInChildProcesses)
{
    makeArchive({"a"});
    Stream const stream("out.zip");
    EXPECT_FALSE(run("ls -l /proc/self/fd | grep out.zip"));
}

TEST_F(ARXZipInputStreamTest, AFrameworkClosesOnce)
{
    makeArchive({"a"});
    std::string const bytes = readAll("out.zip");
    MemoryTable table(bytes);
    ARXZipInputStreamFramework framework(&table);
    framework.close();
    framework.close();
    EXPECT_FALSE(framework.getFirstEntry());
    expectFailure("(m_zipFile);", 1, [&] { framework.read(); });
}
}  // namespace
