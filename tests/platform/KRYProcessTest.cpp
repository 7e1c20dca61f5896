// What a fork, an end of the process and a core dump meet.

#include <atomic>
#include <functional>
#include <thread>

#include "platform/KRYStarted.h"

namespace
{
using KRYProcess = KRYStarted;

[[noreturn]] void signForever(std::atomic<int>& count)
{
    for (;; ++count)
        KRYTestSession().sign();
}

int countAreasNotDumped()
{
    std::ifstream maps("/proc/self/smaps");
    int count = 0;
    for (std::string line; std::getline(maps, line);)
        count += line.rfind("VmFlags:", 0) == 0 && line.find(" dd") != std::string::npos;
    return count;
}
}  // namespace

TEST_F(KRYProcess, AForkedChildIsRefusedTheParentsFileForGood)
{
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.cipher(m_folder / "file"));
    EXPECT_EQ(KRY_SUCCESS, session.protect("parent"));
    auto const isRefused = [&]
    {
        return session.protect(std::string(100000, 'c')) == KRY_ERROR_FILE &&
               session.protect("child") == KRY_ERROR_FILE && session.finish() == KRY_ERROR_FILE;
    };
    EXPECT_EXIT(std::exit(isRefused() ? 0 : 1), testing::ExitedWithCode(0), "");
    EXPECT_EQ(KRY_SUCCESS, session.finish());

    std::string plain;
    ASSERT_EQ(KRY_SUCCESS, session.decipher(m_folder / "file"));
    EXPECT_EQ(KRY_SUCCESS, session.readAll(plain));
    EXPECT_EQ("parent", plain);
}

TEST_F(KRYProcess, ExitsWhileThreadsWork)
{
    static std::atomic<int> s_count{0};
    auto const exitAtWork = []
    {
        for (int thread = 0; thread < 4; ++thread)
            std::thread(signForever, std::ref(s_count)).detach();
        while (s_count < 20)
            std::this_thread::yield();
        std::exit(0);
    };
    for (int run = 0; run < 20; ++run)
        EXPECT_EXIT(exitAtWork(), testing::ExitedWithCode(0), "");
}

TEST_F(KRYProcess, KeepsMasterKeysOutOfCoreDumps)
{
    int const count = countAreasNotDumped();
    stop();
    EXPECT_EQ(count - 1, countAreasNotDumped());
}
