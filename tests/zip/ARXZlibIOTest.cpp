#include <gtest/gtest.h>
#include <minizip/ioapi.h>

#include "zip/ARXZlibConstCharIO.h"
#include "zip/ZipTools.h"

namespace
{
uLong constexpr s_back1 = ~uLong{0};
ZipCharBuffer s_buffer = {"abcde", 5, 3};

struct SeekCase
{
    std::size_t m_from;
    uLong m_offset;
    int m_origin;
    long m_result, m_to;
};

SeekCase const s_seekCases[] = {{3, 0, 0, 0, 0},        {0, 4, 0, 0, 4},        {3, 5, 0, -1, 3},
                                {3, s_back1, 0, -1, 3}, {1, 3, 1, 0, 4},        {1, 4, 1, -1, 1},
                                {5, 0, 1, -1, 5},       {3, s_back1, 1, 0, 2},  {1, 0, 2, 0, 4},
                                {1, 1, 2, -1, 1},       {1, s_back1, 2, -1, 1}, {0, s_back1, 1, -1, 0},
                                {2, 0, 3, -1, 2},       {2, 0, -1, -1, 2}};

TEST(ARXZlibConstCharIO, SeeksOntoItsBytesAlone)
{
    zlib_filefunc_def_s table;
    fillZlibConstCharIO(&table, &s_buffer);
    for (SeekCase const& row : s_seekCases)
    {
        SCOPED_TRACE(testing::Message() << row.m_from << ' ' << row.m_offset << ' ' << row.m_origin);
        s_buffer.m_position = row.m_from;
        EXPECT_EQ(row.m_result, table.zseek_file(nullptr, &s_buffer, row.m_offset, row.m_origin));
        EXPECT_EQ(row.m_to, table.ztell_file(nullptr, &s_buffer));
    }
}

TEST(ARXZlibConstCharIO, RefusesToWriteAndToDoWithoutItsRecord)
{
    zlib_filefunc_def_s table;
    fillZlibConstCharIO(&table, nullptr);
    EXPECT_EQ("NEB_ASSERT(pZipCharBuffer); x1", failureOf([&] { table.zopen_file(nullptr, nullptr, 0); }));
    EXPECT_EQ("NEB_ASSERT(buf); x1", failureOf([&] { table.zread_file(nullptr, &s_buffer, nullptr, 1); }));
    EXPECT_EQ("NEB_ASSERT_NAMED(false, \"Cannot write to const char* buffer\"); x1",
              failureOf([&] { table.zwrite_file(nullptr, &s_buffer, "x", 1); }));
}
}  // namespace
