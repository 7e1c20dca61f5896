#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

#include "crypto/ARXKRYDataPtr.h"
#include "crypto/ARXKRYHandle.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"

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

using NEBAutoFactoryPointerTest = RecordedTest;
}  // namespace

TEST_F(NEBAutoFactoryPointerTest, GivesBackOnceAndTellsOfWhatIsLeft)
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

TEST_F(NEBAutoFactoryPointerTest, ResetDestroysWhatWasHeldUnlessItIsTheSame)
{
    s_destroyed.clear();
    Guard guard(nullptr, "good");
    guard.reset(nullptr);
    for (int const value : {1, 2})
    {
        guard.reset(new int(value));
        guard.reset(guard.get());
    }
    EXPECT_EQ("null1", s_destroyed);
    EXPECT_EQ(2, *guard);
}

TEST_F(NEBAutoFactoryPointerTest, HandlesGoBackToTheirMakerAndNullNowhere)
{
    Arxium::initialize(false);
    ARXKRYHandleI* const handle = ARXKRYHandleFactory::createHandle();
    handle->persistentInitialize("cnfg", nullptr);
    ARXKRYDataPtr{handle, nullptr};
    ARXSimpleKRYHandleIPtr{handle};
    Arxium::terminate();
    ARXKRYHandle own;
    ARXSimpleKRYHandleIPtr{&own};  // nobody takes it any more
    EXPECT_EQ("PersistentInitialize cnfg, CloseHandle S1", m_recorder.takeStory());
}
