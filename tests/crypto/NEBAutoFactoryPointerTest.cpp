#include "prod/SmartPointers/NEBAutoFactoryPointer.h"

#include <stdexcept>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "crypto/ARXKRYDataPtr.h"
#include "crypto/ARXKRYHandle.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"

namespace
{
enum class Manner
{
    Good,
    Careless,
    Raising,
    PuttingBack
};

class Guard final : public NEBAutoFactoryPointer<int>
{
public:
    Guard(int* pointer, Lines& destroyed, Manner manner = Manner::Good)
        : NEBAutoFactoryPointer<int>(pointer), m_destroyed(destroyed), m_manner(manner)
    {
    }
    ~Guard() override
    {
        if (m_manner != Manner::Careless)
            giveBack();
    }
    void destroy(int* pointer) override
    {
        m_destroyed.push_back(pointer ? std::to_string(*pointer) : "null");
        if (m_manner == Manner::PuttingBack)
            NEBAutoPointer<int>::reset(pointer);
        else
            delete pointer;
        if (m_manner == Manner::Raising)
            throw std::runtime_error("raised");
    }

private:
    Lines& m_destroyed;
    Manner m_manner;
};

class NEBAutoFactoryPointerTest : public RecordedTest
{
};
}  // namespace

TEST_F(NEBAutoFactoryPointerTest, GivesBackOnceInEveryManner)
{
    std::string const left =
        "NEBAssertError: NEB_ASSERT_NAMED(!NEBAutoPointer<T>::get(), \"auto_ptr must be NULL\");";
    struct
    {
        Manner m_manner;
        Lines m_destroyed;
        Lines m_raised;
    } const s_cases[] = {
        {Manner::Good, {"1"}, {}},
        {Manner::Raising, {"1"}, {}},
        {Manner::PuttingBack, {"1"}, {}},
        {Manner::Careless, {}, {left, "prod/SmartPointers/NEBAutoFactoryPointer.h NEB_THROW"}},
    };
    for (auto const& manner : s_cases)
    {
        Lines destroyed;
        EXPECT_EQ(manner.m_raised, raisedBy([&] { Guard(new int(1), destroyed, manner.m_manner); }));
        EXPECT_EQ(manner.m_destroyed, destroyed);
    }
}

TEST_F(NEBAutoFactoryPointerTest, ResetDestroysWhatWasHeldUnlessItIsTheSame)
{
    Lines destroyed;
    Guard guard(nullptr, destroyed);
    guard.reset(nullptr);
    EXPECT_EQ(Lines(), destroyed);
    guard.reset(new int(1));
    guard.reset(guard.get());
    EXPECT_EQ(Lines{"null"}, destroyed);
    guard.reset(new int(2));
    EXPECT_EQ((Lines{"null", "1"}), destroyed);
    EXPECT_EQ(2, *guard);
    guard.reset(nullptr);
    EXPECT_EQ((Lines{"null", "1", "2"}), destroyed);
}

TEST_F(NEBAutoFactoryPointerTest, DataGoesBackThroughItsHandleAndNullNowhere)
{
    ARXKRYHandle handle;
    for (Fault const fault : {Fault::None, Fault::Exception})
    {
        m_recorder.failCall("KRY_CryptoFree", 1, fault);
        ARXKRYDataPtr(&handle, m_recorder.handOut("bytes", "data"));
        ARXKRYDataPtr(&handle, nullptr);
        EXPECT_EQ(Lines{"KRY_CryptoFree data"}, m_recorder.takeCalls());
    }
}

TEST_F(NEBAutoFactoryPointerTest, AHandleGoesBackToTheFactoryAndIsLostWithoutOne)
{
    {
        ARXSimpleKRYHandleIPtr const nothing(nullptr);
    }
    Arxium::initialize(false);
    {
        ARXKRYHandleI* const handle = ARXKRYHandleFactory::createHandle();
        ARXSimpleKRYHandleIPtr const guard(handle);
        handle->persistentInitialize("cnfg", nullptr);
    }
    EXPECT_EQ((Lines{"KRY_PersistentInitialize cnfg", "KRY_CloseHandle S1"}), m_recorder.takeCalls());
    Arxium::terminate();
    ARXKRYHandle handle;
    {
        ARXSimpleKRYHandleIPtr const late(&handle);
    }
}
