#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

#include <gtest/gtest.h>

#include "support/Raised.h"

namespace
{
std::string s_destroyed, s_manner = "good";

struct Guard final : NEBAutoFactoryPointer<int>
{
    using NEBAutoFactoryPointer<int>::NEBAutoFactoryPointer;
    ~Guard() override
    {
        if (s_manner != "careless")
            giveBack();
    }
    void destroy(int* pointer) override
    {
        s_destroyed += pointer ? std::to_string(*pointer) : "null";
        if (s_manner == "puts back")
            return NEBAutoPointer<int>::reset(pointer);
        delete pointer;
        if (s_manner == "raises")
            throw std::runtime_error("raised");
    }
};
}  // namespace

TEST(NEBAutoFactoryPointer, DestroysOnceOrReportsWhatIsLeft)
{
    std::string const left =
        "NEBAssertError: NEB_ASSERT_NAMED(!NEBAutoPointer<T>::get(), \"auto_ptr must be NULL\");"
        " | prod/SmartPointers/NEBAutoFactoryPointer.h NEB_THROW";
    for (char const* manner : {"raises", "puts back", "careless", "good"})
    {
        s_manner = manner;
        bool const careless = s_manner == "careless";
        s_destroyed.clear();
        EXPECT_EQ(careless ? left : "", joined(raisedBy([&] { Guard(new int(1)); })));
        EXPECT_EQ(careless ? "" : "1", s_destroyed);
    }
}

TEST(NEBAutoFactoryPointer, ResetDestroysWhatWasHeldUnlessItIsTheSame)
{
    s_destroyed.clear();
    Guard{nullptr};
    Guard guard(nullptr);
    guard.reset(nullptr);
    for (int const value : {1, 2})
    {
        guard.reset(new int(value));
        guard.reset(guard.get());
    }
    EXPECT_EQ("null1", s_destroyed) << "a guard without anything gives nothing back";
    EXPECT_EQ(2, *guard);
}
