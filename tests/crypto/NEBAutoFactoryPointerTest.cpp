#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

#include <gtest/gtest.h>

#include "support/Raised.h"

namespace
{
std::string s_destroyed;

struct Guard final : NEBAutoFactoryPointer<int>
{
    using NEBAutoFactoryPointer<int>::NEBAutoFactoryPointer;
    ~Guard() override { giveBack(); }
    void destroy(int* pointer) override
    {
        s_destroyed += pointer ? std::to_string(*pointer) : "null";
        NEBAutoPointer<int>::reset(pointer);  // which the guard deletes
    }
};

struct ForgetfulGuard final : NEBAutoFactoryPointer<int>
{
    using NEBAutoFactoryPointer<int>::NEBAutoFactoryPointer;
    void destroy(int*) override {}
};
}  // namespace

TEST(NEBAutoFactoryPointer, DestroysWhatItHeldUnlessItIsTheSame)
{
    s_destroyed.clear();
    {
        Guard const empty(nullptr);
        Guard guard(nullptr);
        guard.reset(nullptr);
        for (int const value : {1, 2})
            guard.reset(new int(value));
        guard.reset(guard.get());
    }
    EXPECT_EQ("null12", s_destroyed);
}

TEST(NEBAutoFactoryPointer, RaisesIfAnythingIsLeft)
{
    EXPECT_EQ("NEBAssertError: NEB_ASSERT_NAMED(!NEBAutoPointer<T>::get(), \"auto_ptr must be NULL\");",
              raisedBy([] { ForgetfulGuard(new int(1)); }).at(0));
}
