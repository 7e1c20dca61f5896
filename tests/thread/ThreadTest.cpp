// Many threads on the crypto handles and on start and stop, seen by the recorder.

#include "NEBCore/NEBThrowable.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "support/CryptoRecorder.h"
#include "support/Threads.h"

namespace
{
using HandleThreadTest = StartedTest;
using StartThreadTest = RecordedTest;

int constexpr s_threads = 16;
int constexpr s_rounds = 50;

void useHandle(std::string const& info)
{
    ARXSimpleKRYHandleIPtr const handle(ARXKRYHandleFactory::createHandle("cnfg", info.c_str()));
    char *data = nullptr, *plain = nullptr;
    std::size_t size = 0, plainSize = 0;
    handle->protectData("data", 4, &data, &size, nullptr);
    handle->unprotectData("data", 4, &plain, &plainSize, nullptr);
    handle->getInfo(nullptr, nullptr, nullptr);
    handle->cryptoFree(data, nullptr);
    handle->cryptoFree(plain, nullptr);
}
}  // namespace

TEST_F(HandleThreadTest, ANewPairIsSetUpOnceHoweverManyAskForIt)
{
    for (int round = 0; round < s_rounds; ++round)
    {
        onThreads(s_threads, [&](int) { useHandle(std::to_string(round)); });
        std::size_t const setUpCalls = 2, callsOfEach = 5;
        EXPECT_EQ(setUpCalls + s_threads * callsOfEach, m_recorder.takeCalls().size());
    }
}

TEST_F(StartThreadTest, StartsAndStopsNeverOverlap)
{
    auto const startThenStop = [](int)
    {
        for (int round = 0; round < s_rounds; ++round)
        {
            Arxium::initialize();
            Arxium::terminate();
        }
    };
    onThreads(s_threads, startThenStop);
    Lines const order = {"I18NInitialize", "KRY_CryptoInitialize", "KRY_CryptoTerminate", "I18NTerminate"};
    Lines const calls = m_recorder.takeCalls();
    EXPECT_EQ(0u, calls.size() % order.size());
    for (std::size_t i = 0; i < calls.size(); ++i)
        EXPECT_EQ(order[i % order.size()], calls[i].substr(0, calls[i].find(' ')));
    EXPECT_THROW(Arxium::terminate(), NEBThrowable);
}

TEST_F(HandleThreadTest, TwoSessionsWorkSideBySide)
{
    std::atomic<int> inside{0};
    m_recorder.m_duringProtect = [&]
    {
        ++inside;
        while (inside != 2)  // for ever if one session waits for the other
            std::this_thread::yield();
    };
    onThreads(2, [](int number) { useHandle(std::to_string(number)); });
}
