#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

#include <tuple>

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
    std::tuple<char const*, std::string, std::string> const rows[] = {
        {"good", "1", ""}, {"raises", "1", ""}, {"puts back", "1", ""}, {"careless", "", left}};
    for (auto const& [manner, destroyed, raised] : rows)
    {
        s_destroyed.clear();
        EXPECT_EQ(raised, joined(raisedBy([&name = manner] { Guard(new int(1), name); })));
        EXPECT_EQ(destroyed, s_destroyed);
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

TEST_F(NEBAutoFactoryPointerTest, MemoryAndHandlesGoBackToTheirMakersAndNullNowhere)
{
    ARXKRYHandle own;
    ARXSimpleKRYHandleIPtr{&own};  // nobody takes it: the library is down
    ARXSimpleKRYHandleIPtr{nullptr};
    Arxium::initialize(false);
    {
        ARXKRYHandleI* const handle = ARXKRYHandleFactory::createHandle();
        ARXSimpleKRYHandleIPtr const guard(handle);
        handle->persistentInitialize("cnfg", nullptr);
        m_recorder.failCall("KRY_CryptoFree", 1, Fault::Exception);
        char* bytes = nullptr;
        std::size_t size = 0;
        handle->protectData("x", 1, &bytes, &size, nullptr);
        ARXKRYDataPtr{handle, bytes};
        ARXKRYDataPtr{handle, nullptr};
    }
    EXPECT_EQ("PersistentInitialize cnfg, ProtectData S1 x, Free data, CloseHandle S1",
              m_recorder.takeStory());
    Arxium::terminate();
}
