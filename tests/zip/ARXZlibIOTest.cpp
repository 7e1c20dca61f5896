#include <cstdio>

#include <gtest/gtest.h>
#include <minizip/ioapi.h>

#include "support/ExpectAssertion.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXZlibConstCharIO.h"
#include "zip/ARXZlibFileStreamIO.h"
#include "zip/ZipTools.h"

namespace
{
uLong constexpr s_back1 = ~uLong{0};

struct SeekCase
{
    char const* m_name;
    std::size_t m_from;
    uLong m_offset;
    int m_origin;
    long m_result;
    long m_to;  // of "abcde" in memory
    long m_fileResult;
    long m_fileTo;
};

SeekCase const s_seekCases[] = {
    {"StartFirst", 3, 0, 0, 0, 0, 0, 0},        {"StartLast", 0, 4, 0, 0, 4, 0, 4},
    {"StartBehind", 3, 5, 0, -1, 3, 0, 5},      {"StartFarBehind", 3, 1u << 31, 0, -1, 3, 0, 1l << 31},
    {"CurrentOn", 1, 3, 1, 0, 4, 0, 4},         {"CurrentBehind", 1, 4, 1, -1, 1, 0, 5},
    {"CurrentBack", 3, s_back1, 1, 0, 2, 0, 2}, {"CurrentBeforeStart", 0, s_back1, 1, -1, 0, -1, 0},
    {"CurrentAtTheEnd", 5, 0, 1, -1, 5, 0, 5},  {"End", 1, 0, 2, 0, 4, 0, 5},
    {"EndAndOn", 1, 1, 2, -1, 1, 0, 6},         {"EndAndBack", 1, s_back1, 2, -1, 1, 0, 4},
    {"OriginUnknown", 2, 0, 3, -1, 2, -1, 2},   {"OriginNegative", 2, 0, -1, -1, 2, -1, 2},
};

class ZlibSeek : public testing::TestWithParam<SeekCase>
{
};

TEST_P(ZlibSeek, MovesOrStays)
{
    SeekCase const& row = GetParam();
    zlib_filefunc_def_s table;
    ZipCharBuffer buffer = {"abcde", 5, row.m_from};
    fillZlibConstCharIO(&table, &buffer);
    EXPECT_EQ(row.m_result, table.zseek_file(table.opaque, &buffer, row.m_offset, row.m_origin));
    EXPECT_EQ(row.m_to, table.ztell_file(table.opaque, &buffer));

    TemporaryFolder const folder;
    writeAll(folder / "f", "abcde");
    std::FILE* const file = std::fopen((folder / "f").c_str(), "rb");
    fillZlibFileStreamIO(&table, file);
    std::fseek(file, static_cast<long>(row.m_from), SEEK_SET);
    EXPECT_EQ(row.m_fileResult, table.zseek_file(file, file, row.m_offset, row.m_origin));
    EXPECT_EQ(row.m_fileTo, table.ztell_file(file, file));
    std::fclose(file);
}

INSTANTIATE_TEST_SUITE_P(Rows, ZlibSeek, testing::ValuesIn(s_seekCases),
                         [](auto const& test) { return test.param.m_name; });

// Reads pieces of 1, 3 and 10 bytes through either table.
std::string readPieces(zlib_filefunc_def_s const& table)
{
    voidpf const stream = table.zopen_file(table.opaque, nullptr, 0);
    std::string all;
    for (uLong size : {1, 3, 10, 1, 10})
    {
        char piece[10];
        all.append(piece, table.zread_file(table.opaque, stream, piece, size)).append("|");
    }
    EXPECT_EQ(0, table.zerror_file(table.opaque, stream));
    EXPECT_EQ(0, table.zclose_file(table.opaque, stream));
    return all;
}

TEST(ZlibTables, ReadFromTheStartToTheEndAndNoFurther)
{
    TemporaryFolder const folder;
    writeAll(folder / "f",
             "ab\xFF"
             "de");
    std::FILE* const file = std::fopen((folder / "f").c_str(), "r+b");
    ZipCharBuffer buffer = {
        "ab\xFF"
        "de",
        5, 4};
    zlib_filefunc_def_s table;
    for (int round = 0; round < 2; ++round)  // opening again starts again
    {
        fillZlibConstCharIO(&table, &buffer);
        EXPECT_EQ(
            "a|b\xFF"
            "d|e|||",
            readPieces(table));
        fillZlibFileStreamIO(&table, file);
        EXPECT_EQ(
            "a|b\xFF"
            "d|e|||",
            readPieces(table));
    }
    std::rewind(file);
    EXPECT_EQ(2u, table.zwrite_file(file, file, "XY", 2));
    std::fclose(file);
    EXPECT_EQ(
        "XY\xFF"
        "de",
        readAll(folder / "f"));
}

TEST(ZlibTables, RefuseWhatIsMissing)
{
    zlib_filefunc_def_s table;
    ZipCharBuffer buffer = {nullptr, 5, 0};
    char byte;
    fillZlibFileStreamIO(&table, nullptr);
    expectAssertion("NEB_ASSERT(pFile);", [&] { table.zopen_file(table.opaque, nullptr, 0); });
    fillZlibConstCharIO(&table, nullptr);
    char const* const noRecord = "NEB_ASSERT(pZipCharBuffer);";
    expectAssertion(noRecord, [&] { table.zopen_file(nullptr, nullptr, 0); });
    expectAssertion(noRecord, [&] { table.zread_file(nullptr, nullptr, &byte, 1); });
    expectAssertion(noRecord, [&] { table.ztell_file(nullptr, nullptr); });
    expectAssertion(noRecord, [&] { table.zseek_file(nullptr, nullptr, 0, 0); });
    expectAssertion("NEB_ASSERT(pZipCharBuffer->m_pBuffer);",
                    [&] { table.zread_file(nullptr, &buffer, &byte, 1); });
    buffer.m_pBuffer = "abcde";
    expectAssertion("NEB_ASSERT(buf);", [&] { table.zread_file(nullptr, &buffer, nullptr, 1); });
    expectAssertion("NEB_ASSERT_NAMED(false, \"Cannot write to const char* buffer\");",
                    [&] { table.zwrite_file(nullptr, &buffer, &byte, 1); });
}
}  // namespace
