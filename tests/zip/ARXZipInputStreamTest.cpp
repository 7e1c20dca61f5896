#include "zip/ARXZipInputStream.h"

#include <cstdio>
#include <memory>

#include <gtest/gtest.h>
#include <minizip/ioapi.h>

#include "NEBCore/NEBByteBuffer.h"
#include "support/ExpectAssertion.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXZipInputStreamFramework.h"
#include "zip/ARXZlibConstCharIO.h"
#include "zip/ZipTools.h"

namespace
{
std::size_t constexpr s_end = OJDInputStream::s_end;
using FilePtr = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

FilePtr openFile(char const* path)
{
    return {std::fopen(path, "rb"), std::fclose};
}

struct ConstructCase
{
    char const* m_name;
    void (*m_construct)();
    char const* m_text;
    std::size_t m_places;
};

void openTable()
{
    zlib_filefunc_def_s table;
    ZipCharBuffer buffer = {"no archive", 10, 0};
    fillZlibConstCharIO(&table, &buffer);
    ARXZipInputStream stream(&table);
}

char constexpr s_noArchive[] = "NEB_ASSERT_NAMED(m_zipFile, \"Unable to open zip file.\");";
char constexpr s_noFile[] = "NEB_ASSERT_NAMED(m_fileHandle, \"Unable to open file\");";
ConstructCase const s_constructs[] = {
    {"FileMissing", [] { ARXZipInputStream("/dev/null/x"); }, s_noFile, 2},
    {"PathNull", [] { ARXZipInputStream(static_cast<char const*>(nullptr)); }, s_noFile, 2},
    {"FileNoArchive", [] { ARXZipInputStream("/dev/null"); }, s_noArchive, 4},
    {"HandleNoArchive", [] { ARXZipInputStream(openFile("/dev/null").get()); }, s_noArchive, 3},
    {"HandleNull", [] { ARXZipInputStream(static_cast<std::FILE*>(nullptr)); }, "NEB_ASSERT(pFile);", 3},
    {"BufferNoArchive", [] { ARXZipInputStream("x", 1); }, s_noArchive, 3},
    {"BufferNull", [] { ARXZipInputStream(nullptr, 1); },
     "NEB_ASSERT_NAMED(pBuffer, \"Input stream may not be null\");", 2},
    {"BufferEmpty", [] { ARXZipInputStream("x", 0); },
     "NEB_ASSERT_NAMED(size > 0, \"Input stream may not be empty.\");", 2},
    {"TableNoArchive", openTable, s_noArchive, 2},
};

class ARXZipInputStreamConstruct : public testing::TestWithParam<ConstructCase>
{
};

TEST_P(ARXZipInputStreamConstruct, FailsWithItsTextThroughEachLevel)
{
    Failure const failure = failureOf(GetParam().m_construct);
    EXPECT_EQ("NEBAssertError", failure.m_name);
    EXPECT_EQ(GetParam().m_text, failure.m_text);
    EXPECT_EQ(GetParam().m_places, failure.m_places);
}

INSTANTIATE_TEST_SUITE_P(Rows, ARXZipInputStreamConstruct, testing::ValuesIn(s_constructs),
                         [](auto const& test) { return test.param.m_name; });

// An archive in a file, and a stream on it.
class ARXZipInputStreamTest : public testing::Test
{
protected:
    ARXZipInputStream& open(std::vector<std::string> const& names)
    {
        makeArchive(m_folder / "out.zip", names);
        m_stream = std::make_unique<ARXZipInputStream>((m_folder / "out.zip").c_str());
        return *m_stream;
    }

    TemporaryFolder m_folder;
    std::unique_ptr<ARXZipInputStream> m_stream;
};

TEST_F(ARXZipInputStreamTest, ReadsInThreeFormsUpToTheEnd)
{
    ARXZipInputStream& stream =
        open({"ab\xFF"
              "de",
              "other"});
    NEBByteBuffer bytes(256, 256);
    char buffer[10];
    EXPECT_EQ(s_end, stream.read());  // nothing is open yet
    EXPECT_EQ(s_end, stream.read(buffer, 10));
    EXPECT_EQ(s_end, stream.read(bytes, 10));
    for (int round = 0; round < 2; ++round)  // opening again starts again
    {
        NEBByteBuffer target(256, 256);
        ASSERT_TRUE(stream.openCurrentEntry());
        EXPECT_EQ(s_end, stream.read(target, 0));
        EXPECT_EQ(s_end, stream.read(buffer, 0));
        EXPECT_EQ(2u, stream.read(buffer, 2));
        EXPECT_EQ(255u, stream.read());
        EXPECT_TRUE(stream.getNextEntry());  // the open entry stays open
        stream.close();                      // and does nothing
        EXPECT_EQ(1u, stream.read(target, 1));
        EXPECT_EQ(1u, stream.read(target, 10));
        EXPECT_EQ("de", std::string(target.str(), target.pcount()));
        for (int more = 0; more < 2; ++more)
        {
            EXPECT_EQ(s_end, stream.read());
            EXPECT_EQ(s_end, stream.read(buffer, 10));
            EXPECT_EQ(s_end, stream.read(target, 10));
        }
        EXPECT_EQ("NEBOutOfMemoryError", failureOf([&] { stream.read(target, SIZE_MAX); }).m_name);
        EXPECT_EQ(2u, target.pcount());
        EXPECT_TRUE(stream.getFirstEntry());
    }
    expectAssertion("NEB_ASSERT(buf);", [&] { stream.read(nullptr, 1); });
    EXPECT_THROW(stream.reset(), char const*);
}

TEST_F(ARXZipInputStreamTest, LocatesByEitherSeparatorButExactCase)
{
    ARXZipInputStream& stream = open({"a/b", "c"});
    std::string name;
    EXPECT_TRUE(stream.locate("c") && stream.locate("a\\b") && stream.getCurrentEntryName(name));
    EXPECT_EQ("a/b", name);
    EXPECT_FALSE(stream.locate("C") || stream.locate("") || stream.locate("a/b/"));
    expectAssertion(
        "NEB_ASSERT_NAMED(name, \"[ARZipInputStreamFramwork::locateFile] Path cannot be null.\");",
        [&] { stream.locate(nullptr); });
}

TEST_F(ARXZipInputStreamTest, TakesNamesUpToTheirLimits)
{
    char const* const tooLong =
        "NEB_ASSERT_NAMED((0 == szFileName[fileNameBufferSize-1]), \"File name is larger than data structure "
        "used "
        "to hold it.\");";
    for (std::size_t length : {257, 258, 259, 260, 300})
    {
        ARXZipInputStream& stream = open({std::string(length, 'n'), "behind"});
        std::string name;
        ARXZipInputStreamI::zipEntry entry;
        Failure const none = {};
        EXPECT_EQ(length < 259 ? none.m_text : tooLong,
                  failureOf([&] { stream.getCurrentEntryName(name); }).m_text);
        EXPECT_EQ(length < 260 ? none.m_text : tooLong,
                  failureOf([&] { stream.getCurrentEntryInfo(entry); }).m_text);
        EXPECT_EQ(length < 259 ? none.m_text : tooLong, failureOf([&] { stream.locate("behind"); }).m_text);
        EXPECT_EQ(length < 259 ? length : 0, name.size());
        EXPECT_TRUE(stream.openCurrentEntry());
    }
}

TEST_F(ARXZipInputStreamTest, DescribesAnEntryInBothRecords)
{
    open({"12345"});
    patchDirectory(m_folder / "out.zip", 4, std::string("\x15\x03", 2));
    patchDirectory(m_folder / "out.zip", 36, std::string("\x01\x02\x03\x04\x05\x06", 6));
    ARXZipInputStream stream((m_folder / "out.zip").c_str());
    ARXZipInputStream::zipEntry entry;
    ARXZipInputStreamI::zipEntry base;
    ASSERT_TRUE(stream.getCurrentEntryInfo(entry) && stream.getCurrentEntryInfo(base));
    EXPECT_STREQ("12345", entry.szFileName);
    EXPECT_EQ(0xcbf53a1cu, base.crc);
    EXPECT_EQ(5u, entry.compressedSize);
    EXPECT_EQ(5u, entry.uncompressedSize);
    EXPECT_EQ(0x0315u, entry.version);
    EXPECT_EQ(0x0201u, entry.internalAttributes);
    EXPECT_EQ(0x06050403u, entry.externalAttributes);
}

TEST_F(ARXZipInputStreamTest, RewindsTheHandleAndLeavesItToTheCaller)
{
    open({"a"});
    FilePtr const file = openFile((m_folder / "out.zip").c_str());
    std::fseek(file.get(), 10, SEEK_SET);
    EXPECT_EQ((Tree{{"a", "a"}}), readStream(*std::make_unique<ARXZipInputStream>(file.get())));
    std::rewind(file.get());
    EXPECT_EQ('P', std::fgetc(file.get()));
}

TEST_F(ARXZipInputStreamTest, KeepsTwoStreamsOverOneBufferApart)
{
    open({"a", "b"});
    std::string const bytes = readAll(m_folder / "out.zip");
    ARXZipInputStream first(bytes.data(), bytes.size());
    ARXZipInputStream second(bytes.data(), bytes.size());
    EXPECT_TRUE(first.openCurrentEntry() && second.getNextEntry() && second.openCurrentEntry());
    EXPECT_EQ(std::size_t{'a'}, first.read());
    EXPECT_EQ(std::size_t{'b'}, second.read());
}

TEST_F(ARXZipInputStreamTest, FrameworkAnswersFalseOnceClosed)
{
    open({"a"});
    std::string const bytes = readAll(m_folder / "out.zip");
    zlib_filefunc_def_s table;
    ZipCharBuffer buffer = {bytes.data(), bytes.size(), 0};
    fillZlibConstCharIO(&table, &buffer);
    ARXZipInputStreamFramework framework(&table);
    EXPECT_TRUE(framework.openCurrentEntry());
    framework.close();
    framework.close();
    std::string name;
    ARXZipInputStreamI::zipEntry entry;
    NEBByteBuffer target(256, 256);
    EXPECT_FALSE(framework.getFirstEntry() || framework.getNextEntry() || framework.locate("a") ||
                 framework.getCurrentEntryName(name) || framework.getCurrentEntryInfo(entry) ||
                 framework.openCurrentEntry());
    expectAssertion("NEB_ASSERT(m_zipFile);", [&] { framework.read(); });
    expectAssertion("NEB_ASSERT(m_zipFile);", [&] { framework.read(name.data(), 0); });
    expectAssertion("NEB_ASSERT(m_zipFile);", [&] { framework.read(target, 0); });
}
}  // namespace
