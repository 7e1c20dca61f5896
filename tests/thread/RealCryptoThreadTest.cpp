// Many threads and many sessions on the crypto interface itself.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/Arxium.h"
#include "support/TemporaryFolder.h"
#include "support/Threads.h"
#include "url/ARXUriDispatchHelper.h"

static std::atomic<int> s_closed{0};

// Counts what the library closes, and passes it on.
#pragma GCC visibility push(default)
std::int32_t KRY_CloseHandle(void** session, void* extra, char** details)
{
    auto* const next = reinterpret_cast<decltype(&KRY_CloseHandle)>(dlsym(RTLD_NEXT, "KRY_CloseHandle"));
    std::int32_t const status = next(session, extra, details);
    s_closed += KRY_SUCCEEDED(status);
    return status;
}
#pragma GCC visibility pop

namespace
{
int constexpr s_count = 100000 / ARXIUM_THREAD_SHARE;

struct RealCryptoThreadTest : testing::Test
{
    RealCryptoThreadTest()
    {
        setenv("XDG_STATE_HOME", m_folder.path().c_str(), 1);  // where the start makes the key
        Arxium::initialize();
    }
    TemporaryFolder m_folder;
};

std::string urlOf(int number)
{
    std::string url;
    std::string const session = "session " + std::to_string(number % 7);
    ARXUriDispatchHelper::genUrlForFile("/folder/file " + std::to_string(number), url, session.c_str(),
                                        false);
    return url;
}
}  // namespace

TEST_F(RealCryptoThreadTest, UrlsOfManyThreadsEqualASerialRun)
{
    std::vector<std::string> expected;
    for (int i = 0; i < s_count; ++i)
        expected.push_back(urlOf(i));
    auto const compare = [&](int thread)
    {
        std::vector<std::string> urls(s_count);
        for (int i = thread * s_count / 8; urls[static_cast<std::size_t>(i % s_count)].empty(); ++i)
            urls[static_cast<std::size_t>(i % s_count)] = urlOf(i % s_count);
        EXPECT_TRUE(urls == expected);
    };
    onThreads(8, compare);
    Arxium::terminate();
}

TEST_F(RealCryptoThreadTest, TheStopClosesEverySessionOfManyPairs)
{
    std::size_t const before = mallinfo2().uordblks;
    for (int i = 0; i < s_count; ++i)
    {
        // Documents that differ in four neighbouring bytes alone never have one checksum.
        std::string id;
        for (int const place : {32768, 1024, 32, 1})
            id += static_cast<char>('A' + i / place % 32);
        ARXSimpleKRYHandleIPtr const handle(ARXKRYHandleFactory::createHandle(
            ("<sessionConfigDocument><serviceID>" + id + "</serviceID></sessionConfigDocument>").c_str(),
            "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></"
            "setInfoDocument>"));
    }
    std::size_t const held = mallinfo2().uordblks - before;  // of no meaning under a sanitizer
    std::printf("%zu bytes a pair\n", held / s_count);
    EXPECT_GT(10000u, held / s_count);
    s_closed = 0;
    Arxium::terminate();
    EXPECT_EQ(s_count, s_closed);
}
