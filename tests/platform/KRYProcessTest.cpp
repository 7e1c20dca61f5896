// What a fork, an end of the process and a core dump meet.

#include <atomic>
#include <fstream>
#include <thread>

#include <unistd.h>

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

// The number of single pages that the system leaves out of core dumps. A sanitizer has larger areas of that
// kind.
int countPagesNotDumped()
{
    std::string const page = " " + std::to_string(sysconf(_SC_PAGESIZE) / 1024) + " kB";
    std::ifstream maps("/proc/self/smaps");
    bool isPage = false;
    int count = 0;
    for (std::string line; std::getline(maps, line);)
    {
        if (line.rfind("Size:", 0) == 0)
            isPage = line.find(page) != std::string::npos;
        count += isPage && line.rfind("VmFlags:", 0) == 0 && line.find(" dd") != std::string::npos;
    }
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

TEST_F(KRYProcess, KeepsMasterKeysOutOfCoreDumps)
{
    EXPECT_EQ(1, countPagesNotDumped());
    stop(s_service);
    EXPECT_EQ(0, countPagesNotDumped());
}
