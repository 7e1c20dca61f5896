#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

#include <gtest/gtest.h>

#include "support/Raised.h"

namespace
{
std::string s_destroyed;

struct Guard final : NEBAutoFactoryPointer<int>
{
    Guard(int* pointer, std::string manner) : NEBAutoFactoryPointer<int>(pointer), m_manner(std::move(manner))
    {
    }
    ~Guard() override
    {
        if (m_manner != "careless")
            giveBack();
    }
    void destroy(int* pointer) override
    {
        s_destroyed += pointer ? std::to_string(*pointer) : "null";
        if (m_manner == "puts back")
            return NEBAutoPointer<int>::reset(pointer);
        delete pointer;
        if (m_manner == "raises")
            throw std::runtime_error("raised");
    }
    std::string m_manner;
};
}  // namespace

TEST(NEBAutoFactoryPointer, GivesBackOnceAndTellsOfWhatIsLeft)
{
    std::string const left =
        "NEBAssertError: NEB_ASSERT_NAMED(!NEBAutoPointer<T>::get(), \"auto_ptr must be NULL\");"
        " | prod/SmartPointers/NEBAutoFactoryPointer.h NEB_THROW";
    for (std::string const manner : {"good", "raises", "puts back", "careless"})
    {
        bool const careless = manner == "careless";
        s_destroyed.clear();
        EXPECT_EQ(careless ? left : "", joined(raisedBy([&] { Guard(new int(1), manner); })));
        EXPECT_EQ(careless ? "" : "1", s_destroyed);
    }
}

TEST(NEBAutoFactoryPointer, ResetDestroysWhatWasHeldUnlessItIsTheSame)
{
    s_destroyed.clear();
    Guard(nullptr, "good");
    Guard guard(nullptr, "good");
    guard.reset(nullptr);
    for (int const value : {1, 2})
    {
        guard.reset(new int(value));
        guard.reset(guard.get());
    }
    EXPECT_EQ("null1", s_destroyed) << "a guard without anything gives nothing back";
    EXPECT_EQ(2, *guard);
}
