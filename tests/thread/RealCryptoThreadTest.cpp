// Many threads on the crypto interface itself.

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/Arxium.h"
#include "support/TemporaryFolder.h"
#include "support/Threads.h"
#include "url/ARXUriDispatchHelper.h"

namespace
{
std::vector<std::string> signMany()
{
    std::vector<std::string> urls(2000);
    for (std::size_t i = 0; i < urls.size(); ++i)
    {
        std::string const session = "session " + std::to_string(i % 7);
        ARXUriDispatchHelper::genUrlForFile("/folder/" + std::to_string(i), urls[i], session.c_str(), false);
    }
    return urls;
}
}  // namespace

TEST(RealCryptoThreadTest, UrlsOfManyThreadsEqualThoseOfOne)
{
    TemporaryFolder const folder;
    setenv("XDG_STATE_HOME", folder.path().c_str(), 1);  // where the start makes the key
    Arxium::initialize();
    std::vector<std::string> const expected = signMany();
    onThreads(8, [&](int) { EXPECT_TRUE(signMany() == expected); });
    Arxium::terminate();
}
