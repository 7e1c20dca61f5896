#include "zip/ARXZipInputStream.h"

#include <memory>

#include <gtest/gtest.h>
#include <minizip/ioapi.h>

#include "NEBCore/NEBByteBuffer.h"
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

void openTable()
{
    ZipCharBuffer buffer = {"no archive", 10, 0};
    zlib_filefunc_def_s table;
    fillZlibConstCharIO(&table, &buffer);
    ARXZipInputStream stream(&table);
}

TEST(ARXZipInputStream, ConstructorsFailWithTheirTextsThroughEachLevel)
{
    struct
    {
        char const* m_failure;
        void (*m_construct)();
    } const rows[] = {
        {"m_fileHandle, \"Unable to open file\"); x2", [] { ARXZipInputStream("/dev/null/x"); }},
        {"m_fileHandle, \"Unable to open file\"); x2",
         [] { ARXZipInputStream(static_cast<char const*>(nullptr)); }},
        {"m_zipFile, \"Unable to open zip file.\"); x4", [] { ARXZipInputStream("/dev/null"); }},
        {"m_zipFile, \"Unable to open zip file.\"); x3",
         [] { ARXZipInputStream(openFile("/dev/null").get()); }},
        {"m_zipFile, \"Unable to open zip file.\"); x3", [] { ARXZipInputStream("x", 1); }},
        {"m_zipFile, \"Unable to open zip file.\"); x2", openTable},
        {"pBuffer, \"Input stream may not be null\"); x2", [] { ARXZipInputStream(nullptr, 1); }},
        {"size > 0, \"Input stream may not be empty.\"); x2", [] { ARXZipInputStream("x", 0); }}};
    for (auto const& row : rows)
        EXPECT_EQ(std::string("NEB_ASSERT_NAMED(") + row.m_failure, failureOf(row.m_construct));
    EXPECT_EQ("NEB_ASSERT(pFile); x3",
              failureOf([] { ARXZipInputStream(static_cast<std::FILE*>(nullptr)); }));
}

class ARXZipInputStreamTest : public testing::Test
{
protected:
    TemporaryFolder m_folder;
    CurrentFolder m_current{m_folder.path()};
};

TEST_F(ARXZipInputStreamTest, AllFormsReadUpToTheEndAndNoFurther)
{
    makeArchive("out.zip", {"ab\xFF"
                            "de",
                            "other"});
    ARXZipInputStream stream("out.zip");
    char buffer[10];
    NEBByteBuffer target(256, 256);
    auto const expectEnd = [&]
    {
        EXPECT_EQ(s_end, stream.read());
        EXPECT_EQ(s_end, stream.read(buffer, 10));
        EXPECT_EQ(s_end, stream.read(target, 0));
        EXPECT_EQ(s_end, stream.read(target, 10));
    };
    expectEnd();
    for (std::string const expected : {"de", "dede"})  // opening again starts again
    {
        ASSERT_TRUE(stream.getFirstEntry() && stream.openCurrentEntry());
        EXPECT_EQ(s_end, stream.read(buffer, 0));
        EXPECT_EQ(2u, stream.read(buffer, 2));
        EXPECT_EQ(255u, stream.read());
        EXPECT_TRUE(stream.getNextEntry());  // the open entry stays open
        stream.close();                      // and this does nothing
        EXPECT_EQ(1u, stream.read(target, 1));
        EXPECT_EQ(1u, stream.read(target, 10));
        expectEnd();
        expectEnd();
        EXPECT_EQ("NEBOutOfMemoryError: ", failureOf([&] { stream.read(target, SIZE_MAX); }).substr(0, 21));
        EXPECT_EQ(expected, std::string(target.str(), target.pcount()));
    }
    EXPECT_EQ("NEB_ASSERT(buf); x1", failureOf([&] { stream.read(nullptr, 1); }));
    EXPECT_THROW(stream.reset(), char const*);
}

TEST_F(ARXZipInputStreamTest, LocateTakesEitherSeparatorButExactCase)
{
    makeArchive("out.zip", {"a/b", "c"});
    ARXZipInputStream stream("out.zip");
    std::string name;
    EXPECT_TRUE(stream.locate("c") && stream.locate("a\\b") && stream.getCurrentEntryName(name));
    EXPECT_EQ("a/b", name);
    EXPECT_FALSE(stream.locate("C") || stream.locate("") || stream.locate("a/b/"));
    EXPECT_EQ("NEB_ASSERT_NAMED(name, \"[ARZipInputStreamFramwork::locateFile] Path cannot be null.\"); x1",
              failureOf([&] { stream.locate(nullptr); }));
}

TEST_F(ARXZipInputStreamTest, NamesHaveLimits)
{
    std::string const tooLong =
        "NEB_ASSERT_NAMED((0 == szFileName[fileNameBufferSize-1]), \"File name is larger than "
        "data structure used to hold it.\"); x1";
    for (std::size_t length : {257u, 258u, 259u, 260u, 300u})
    {
        makeArchive("out.zip", {std::string(length, 'n'), "behind"});
        ARXZipInputStream stream("out.zip");
        std::string name;
        ARXZipInputStreamI::zipEntry entry;
        EXPECT_EQ(length < 260 ? "none" : tooLong, failureOf([&] { stream.getCurrentEntryInfo(entry); }));
        EXPECT_EQ(length < 259 ? "none" : tooLong, failureOf([&] { stream.getCurrentEntryName(name); }));
        EXPECT_EQ(length < 259 ? "none" : tooLong, failureOf([&] { stream.locate("behind"); }));
        EXPECT_EQ(length < 259 ? length : 0, name.size());
    }
}

TEST_F(ARXZipInputStreamTest, SourcesOfTheCallerStayWithTheCaller)
{
    makeArchive("out.zip", {"12345"}, {{4, "\x15\3"}, {36, "\1\2\3\4\5\6"}});
    FilePtr const file = openFile("out.zip");
    std::fseek(file.get(), 10, SEEK_SET);
    EXPECT_EQ((Tree{{"12345", "12345"}}), readStream(ARXZipInputStream(file.get())));
    std::rewind(file.get());
    EXPECT_EQ('P', std::fgetc(file.get()));

    std::string const bytes = readAll("out.zip");
    ZipCharBuffer buffer = {bytes.data(), bytes.size(), 0};
    zlib_filefunc_def_s table;
    fillZlibConstCharIO(&table, &buffer);
    ARXZipInputStreamFramework framework(&table);
    ARXZipInputStream stream(bytes.data(), bytes.size());
    EXPECT_TRUE(framework.openCurrentEntry() && stream.openCurrentEntry());
    framework.close();
    framework.close();
    std::string name;
    ARXZipInputStream::zipEntry entry;
    NEBByteBuffer target(256, 256);
    EXPECT_FALSE(framework.getFirstEntry() || framework.getNextEntry() || framework.locate("12345") ||
                 framework.getCurrentEntryName(name) || framework.getCurrentEntryInfo(entry) ||
                 framework.openCurrentEntry());
    EXPECT_EQ("NEB_ASSERT(m_zipFile); x1", failureOf([&] { framework.read(target, 0); }));

    EXPECT_EQ(std::size_t{'1'}, stream.read());
    ASSERT_TRUE(stream.getCurrentEntryInfo(entry));
    EXPECT_STREQ("12345", entry.szFileName);
    EXPECT_EQ(0xcbf53a1cu, entry.crc);
    EXPECT_EQ(5u, entry.compressedSize);
    EXPECT_EQ(0x0315u, entry.version);
    EXPECT_EQ(0x0201u, entry.internalAttributes);
    EXPECT_EQ(0x06050403u, entry.externalAttributes);
}
}  // namespace
