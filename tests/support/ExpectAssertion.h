// Expects a call to fail by an assertion of exactly that text, raised at one place.

#ifndef ARXIUM_TESTS_SUPPORT_EXPECTASSERTION_H
#define ARXIUM_TESTS_SUPPORT_EXPECTASSERTION_H

#include <gtest/gtest.h>

#include "NEBCore/NEBAssertError.h"

template <class Call>
void expectAssertion(char const* text, Call const& call)
{
    try
    {
        call();
        ADD_FAILURE() << "no failure, expected " << text;
    }
    catch (NEBAssertError const& error)
    {
        EXPECT_STREQ(text, error.getMessage());
        ASSERT_EQ(1u, error.getBackTrace().size());
        EXPECT_STREQ(nullptr, error.getBackTrace()[0]->getText());
        EXPECT_STREQ("NEB_THROW", error.getBackTrace()[0]->getMacro());
    }
}

#endif
