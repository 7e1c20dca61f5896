#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

#include <stdexcept>
#include <tuple>

#include "crypto/ARXKRYDataPtr.h"
#include "crypto/ARXKRYHandle.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
std::string s_destroyed;

class Guard final : public NEBAutoFactoryPointer<int>
{
public:
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

private:
    std::string m_manner;
};

using NEBAutoFactoryPointerTest = RecordedTest;
}  // namespace

TEST_F(NEBAutoFactoryPointerTest, GivesBackOnceAndTellsOfWhatIsLeft)
{
    std::string const left =
        "NEBAssertError: NEB_ASSERT_NAMED(!NEBAutoPointer<T>::get(), \"auto_ptr must be NULL\");"
        " | prod/SmartPointers/NEBAutoFactoryPointer.h NEB_THROW";
    std::tuple<char const*, std::string, std::string> const s_cases[] = {
        {"good", "1", ""}, {"raises", "1", ""}, {"puts back", "1", ""}, {"careless", "", left}};
    for (auto const& [manner, destroyed, raised] : s_cases)
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
    guard.reset(new int(1));
    guard.reset(guard.get());
    EXPECT_EQ("null", s_destroyed);
    guard.reset(new int(2));
    EXPECT_EQ("null1", s_destroyed);
    EXPECT_EQ(2, *guard);
}

TEST_F(NEBAutoFactoryPointerTest, MemoryAndHandlesGoBackToTheirMakersAndNullNowhere)
{
    {
        ARXSimpleKRYHandleIPtr const nothing(nullptr);
    }
    Arxium::initialize(false);
    {
        ARXKRYHandleI* const handle = ARXKRYHandleFactory::createHandle();
        ARXSimpleKRYHandleIPtr const guard(handle);
        handle->persistentInitialize("cnfg", nullptr);
        m_recorder.failCall("KRY_CryptoFree", 1, Fault::Exception);
        ARXKRYDataPtr const data(handle, m_recorder.handOut("bytes", "data"));
        ARXKRYDataPtr const nothing(handle, nullptr);
    }
    EXPECT_EQ("PersistentInitialize cnfg, Free data, CloseHandle S1", m_recorder.takeStory());
    Arxium::terminate();
    ARXKRYHandle handle;
    {
        ARXSimpleKRYHandleIPtr const late(&handle);
    }  // nobody takes it any more
}
