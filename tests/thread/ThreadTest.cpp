// Many threads on the crypto handles and on start and stop, seen by the recorder.

#include <algorithm>
#include <chrono>

#include "NEBCore/NEBThrowable.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/CryptoRecorder.h"
#include "support/Threads.h"

namespace
{
using ThreadTest = RecordedTest;

int constexpr s_rounds = std::max(200 / ARXIUM_THREAD_SHARE, 20);

void protect(char const* info)
{
    ARXSimpleKRYHandleIPtr const handle(ARXKRYHandleFactory::createHandle("cnfg", info));
    char* data = nullptr;
    std::size_t size = 0;
    handle->protectData("data", 4, &data, &size, nullptr);
    handle->cryptoFree(data, nullptr);
}
}  // namespace

TEST_F(ThreadTest, ANewPairIsSetUpOnceHoweverManyAskForIt)
{
    Arxium::initialize(false);
    for (int round = 0; round < s_rounds; ++round)
    {
        onThreads(32, [&](int) { protect(("info" + std::to_string(round)).c_str()); });
        // Two calls set the pair up, and two are each one's own.
        EXPECT_EQ(2u + 2 * 32, m_recorder.takeCalls().size());
    }
    Arxium::terminate();
}

TEST_F(ThreadTest, StartsAndStopsBalance)
{
    auto const startAndStop = [](int)
    {
        for (int i = 0; i < 2 * s_rounds; ++i)
            i % 2 == 0 ? Arxium::initialize() : Arxium::terminate();
    };
    onThreads(32, startAndStop);
    Lines const order = {"I18NInitialize", "KRY_CryptoInit", "KRY_CryptoTerm", "I18NTerminate"};
    Lines const calls = m_recorder.takeCalls();
    EXPECT_EQ(0u, calls.size() % 4);
    for (std::size_t i = 0; i < calls.size(); ++i)
        EXPECT_EQ(0u, calls[i].rfind(order[i % 4], 0)) << calls[i];
    EXPECT_THROW(Arxium::terminate(), NEBThrowable);
}

TEST_F(ThreadTest, TwoSessionsWorkSideBySide)
{
    Arxium::initialize(false);
    std::atomic<int> inside{0};
    // Each waits inside its call until the other is inside too.
    m_recorder.m_duringProtect = [&]
    {
        ++inside;
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(100);
        while (inside != 2 && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        EXPECT_EQ(2, inside);
    };
    onThreads(2, [](int number) { protect(number == 0 ? "one" : "other"); });
    Arxium::terminate();
}
