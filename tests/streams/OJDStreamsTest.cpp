#include <sys/resource.h>

#include <csignal>

#include "streams/StreamTools.h"

// The last flush meets a limit in the middle of what is held back; the rest stays for the next.
TEST(OJDFileOutputStream, ReplacesTheFileByWhatIsWrittenInAnyPieces)
{
    TemporaryFolder const folder;
    std::string all(200000, '\0'), name = folder / "file";
    std::ofstream(name) << std::string(300000, 'x');
    std::generate(all.begin(), all.end(), std::mt19937(1));
    OJDFileOutputStream stream(name.c_str(), 0);
    std::size_t at = 0;
    for (std::size_t const size : {0u, 1u, 16383u, 1u, 16384u, 157231u, 10000u})
        stream.write(all.data() + std::exchange(at, at + size), size);

    rlimit before;
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &before));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit const small = {195000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ("NEBException: " + name + ": File too large", raisedBy([&] { stream.flush(); }).at(0));
    setrlimit(RLIMIT_FSIZE, &before);
    stream.close();
    EXPECT_TRUE(all == readAll(name));
}

TEST(OJDFileOutputStream, TellsWhatTheSystemRefusesAtEachStep)
{
    std::string const isFull = "/dev/full: No space left on device", large(20000, 'x');
    auto const error = [](auto const& call) { return raisedBy(call).at(0).substr(14); };
    OJDFileOutputStream full("/dev/full", 0);
    EXPECT_EQ("/: Is a directory", error([] { OJDFileOutputStream("/", 0); }));
    EXPECT_EQ(isFull, error([&] { full.write(large.data(), large.size()); }));
    full.write("a", 1);
    EXPECT_EQ(isFull, error([&] { full.close(); }));
    full.flush();
    full.close();
    EXPECT_EQ("/dev/full: no file is open", error([&] { full.write("a", 1); }));
    OJDFileOutputStream("/dev/full", 0).write("a", 1);  // lost in silence
}
