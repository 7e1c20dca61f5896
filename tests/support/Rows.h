// Names each test of a parameterised suite after its row in the table, the member m_name:
//
//     INSTANTIATE_TEST_SUITE_P(Paths, IsAbsolutePath, testing::ValuesIn(s_rows), RowName());
//
// Names consist of letters and digits.

#ifndef ARXIUM_TESTS_SUPPORT_ROWS_H
#define ARXIUM_TESTS_SUPPORT_ROWS_H

#include <string>

#include <gtest/gtest.h>

struct RowName
{
    template <class Row>
    std::string operator()(testing::TestParamInfo<Row> const& info) const
    {
        return info.param.m_name;
    }
};

#endif
