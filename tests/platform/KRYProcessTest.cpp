// What a fork, an end of the process and a core dump meet.

#include <atomic>
#include <fstream>
#include <thread>

#include "platform/KRYStarted.h"

namespace
{
using KRYProcess = KRYStarted;

// Whether a forked child is refused the file of its parent, and can do work of its own.
bool childKeepsApart(KRYTestSession& parents, std::string const& path)
{
    bool const isRefused = parents.protect("child") == KRY_ERROR_STATE && parents.finish() == KRY_ERROR_STATE;
    std::string const reason = parents.lastFailure();
    KRYTestSession own;
    return isRefused && parents.close() == KRY_SUCCESS &&
           reason == "the file is being written by the process that this one was forked from" &&
           own.cipher(path) == KRY_SUCCESS && own.protect("child") == KRY_SUCCESS &&
           own.finish() == KRY_SUCCESS;
}

// Does not return: several threads are in the interface when the process ends.
[[noreturn]] void exitAtWork(TemporaryFolder const& folder)
{
    static std::atomic<int> s_files{0};
    for (int thread = 0; thread < 4; ++thread)
        std::thread(
            [&folder, thread]
            {
                for (;; ++s_files)
                {
                    KRYTestSession session;
                    session.cipher(folder / std::to_string(thread));
                    session.protect("data");
                    session.finish();
                }
            })
            .detach();
    while (s_files < 20)
        std::this_thread::yield();
    std::exit(0);
}

// The number of pieces of memory that the system locks and leaves out of core dumps, if it may lock any.
std::size_t countKeptMemory()
{
    std::ifstream maps("/proc/self/smaps");
    std::size_t count = 0;
    for (std::string line; std::getline(maps, line);)
        count += line.rfind("VmFlags:", 0) == 0 && line.find(" lo") != std::string::npos &&
                 line.find(" dd") != std::string::npos;
    return count;
}
}  // namespace

TEST_F(KRYProcess, AForkedChildLeavesTheParentsFileAlone)
{
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.cipher(m_folder / "file"));
    EXPECT_EQ(KRY_SUCCESS, session.protect("parent"));
    EXPECT_EXIT(std::exit(childKeepsApart(session, m_folder / "other") ? 0 : 1), testing::ExitedWithCode(0),
                "");
    EXPECT_EQ(KRY_SUCCESS, session.finish());

    std::string plain;
    ASSERT_EQ(KRY_SUCCESS, session.decipher(m_folder / "file"));
    EXPECT_EQ(KRY_SUCCESS, session.readAll(plain));
    ASSERT_EQ(KRY_SUCCESS, session.decipher(m_folder / "other"));
    EXPECT_EQ(KRY_SUCCESS, session.readAll(plain));
    EXPECT_EQ("parentchild", plain);
}

TEST_F(KRYProcess, ExitsWhileThreadsWork)
{
    for (int run = 0; run < 20; ++run)
        EXPECT_EXIT(exitAtWork(m_folder), testing::ExitedWithCode(0), "");
}

TEST_F(KRYProcess, KeepsKeysOutOfSwapAndCoreDumps)
{
    EXPECT_EQ(1u, countKeptMemory()) << "the master keys";
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ(2u, countKeptMemory()) << "the key of signatures too";
    stop(s_service);
    EXPECT_EQ(0u, countKeptMemory());
}
