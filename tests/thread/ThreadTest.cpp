// Many threads on the crypto handles and on start and stop, seen by the recorder.

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

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
        std::string const info = "info" + std::to_string(round);
        onThreads(32, [&](int) { protect(info.c_str()); });
        std::vector<std::string> const calls = m_recorder.takeCalls();
        EXPECT_EQ(1, std::count(calls.begin(), calls.end(), "KRY_PersistentInitialize cnfg"));
        EXPECT_EQ(1,
                  std::count_if(calls.begin(), calls.end(),
                                [](std::string const& call) { return call.rfind("KRY_SetInfo", 0) == 0; }));
    }
    Arxium::terminate();
}

TEST_F(ThreadTest, StartsAndStopsBalance)
{
    onThreads(32,
              [](int)
              {
                  for (int i = 0; i < s_rounds; ++i)
                  {
                      Arxium::initialize();
                      Arxium::terminate();
                  }
              });
    std::vector<std::string> calls = m_recorder.takeCalls();
    ASSERT_EQ(0u, calls.size() % 4);
    for (std::size_t i = 0; i < calls.size(); i += 4)
    {
        EXPECT_EQ("I18NInitialize", calls[i]);
        EXPECT_EQ(0u, calls[i + 1].rfind("KRY_CryptoInitialize", 0));
        EXPECT_EQ(0u, calls[i + 2].rfind("KRY_CryptoTerminate", 0));
        EXPECT_EQ("I18NTerminate", calls[i + 3]);
    }
    EXPECT_THROW(Arxium::terminate(), NEBThrowable);
}

TEST_F(ThreadTest, TwoSessionsWorkSideBySide)
{
    Arxium::initialize(false);
    std::mutex lock;
    std::condition_variable changed;
    int inside = 0;
    // Each waits inside its call until the other is inside too.
    m_recorder.m_duringProtect = [&]
    {
        std::unique_lock<std::mutex> guard(lock);
        ++inside;
        changed.notify_all();
        EXPECT_TRUE(changed.wait_for(guard, std::chrono::seconds(100), [&] { return inside == 2; }));
    };
    onThreads(2, [](int number) { protect(number == 0 ? "one" : "other"); });
    Arxium::terminate();
}
