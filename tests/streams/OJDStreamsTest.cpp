#include <sys/resource.h>

#include <algorithm>
#include <csignal>

#include <gtest/gtest.h>

#include "NEBCore/NEBByteBuffer.h"
#include "OJDStreamsDLL/OJDFileOutputStream.h"
#include "OJDStreamsDLL/OJDInputStream.h"
#include "streams/StreamTools.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"

namespace
{
// Bytes that differ from place to place.
std::string sample(std::size_t size)
{
    std::string bytes;
    while (bytes.size() < size)
        bytes += std::to_string(bytes.size()) + ",";
    return bytes.substr(0, size);
}

template <class Call>
std::string failureOf(Call const& call)
{
    Lines const raised = raisedBy(call);
    return raised.empty() ? "none" : raised[0];
}
}  // namespace

TEST(OJDFileOutputStream, ReplacesTheFileByWhatIsWrittenInAnyPieces)
{
    TemporaryFolder const folder;
    std::string const all = sample(200000), name = folder / "file";
    std::ofstream(name) << sample(300000);
    {
        OJDFileOutputStream stream(name.c_str(), 0);
        std::size_t at = 0;
        for (unsigned const size : {0u, 1u, 16382u, 1u, 1u, 16383u, 16384u, 16385u, 5u, 100000u, 34458u})
        {
            stream.write(all.data() + at, size);
            at += size;
        }
    }
    EXPECT_TRUE(all == contents(name));
}

TEST(OJDFileOutputStream, TellsWhatTheSystemRefusesAtEachStep)
{
    TemporaryFolder const folder;
    std::string const noSpace = "NEBException: /dev/full: No space left on device", large = sample(20000);
    EXPECT_EQ("NEBException: /dev/null/x: Not a directory",
              failureOf([] { OJDFileOutputStream("/dev/null/x", 0); }));
    EXPECT_EQ("NEBException: " + folder.path() + ": Is a directory",
              failureOf([&] { OJDFileOutputStream(folder.path().c_str(), 0); }));

    OJDFileOutputStream full("/dev/full", 0), nameless(nullptr, 0);
    EXPECT_EQ(noSpace, failureOf([&] { full.write(large.data(), large.size()); }));
    full.write("a", 1);
    EXPECT_EQ(noSpace, failureOf([&] { full.flush(); }));
    EXPECT_EQ(noSpace, failureOf([&] { full.close(); }));
    EXPECT_EQ("none", failureOf([&] { full.close(), full.flush(), nameless.flush(), nameless.close(); }));
    EXPECT_EQ("NEBException: /dev/full: no file is open", failureOf([&] { full.write("a", 1); }));
    EXPECT_EQ("NEBException: : no file is open", failureOf([&] { nameless.write("a", 1); }));
    OJDFileOutputStream("/dev/full", 0).write("a", 1);  // lost in silence
}

TEST(OJDFileOutputStream, KeepsTheRestOfARefusedFlushForTheNext)
{
    TemporaryFolder const folder;
    std::string const all = sample(30000), name = folder / "file";
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &before));
    rlimit const small = {20000, before.rlim_max};

    OJDFileOutputStream stream(name.c_str(), 0);
    stream.write(all.data(), 15000);
    stream.flush();
    stream.write(all.data() + 15000, 15000);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ("NEBException: " + name + ": File too large", failureOf([&] { stream.flush(); }));
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(all.substr(0, 20000), contents(name));
    stream.close();
    EXPECT_TRUE(all == contents(name));
}

TEST(OJDInputStream, BuildsItsFullReadsOnTheOthersAndRefusesReset)
{
    struct PieceStream : OJDInputStream
    {
        std::size_t read() override
        {
            return m_at == 9 ? s_end : static_cast<unsigned char>(m_bytes[m_at++]);
        }
        std::size_t read(NEBByteBuffer& buf, std::size_t n) override
        {
            for (std::size_t i = 0; i < std::min<std::size_t>(n, 4) && m_at < 9; ++i)
                buf << m_bytes[m_at++];
            return std::min(buf.pcount(), n);
        }
        std::string m_bytes =
            "\xFF"
            "12345678";
        std::size_t m_at = 0;
    } bytewise, buffered;
    char bytes[9];
    NEBByteBuffer buffer(256, 256);
    EXPECT_EQ(7u, bytewise.readFully(bytes, 7));
    EXPECT_EQ(2u, bytewise.readFully(bytes + 7, 5));
    EXPECT_EQ(OJDInputStream::s_end, bytewise.readFully(bytes, 1));
    EXPECT_EQ(bytewise.m_bytes, std::string(bytes, 9));
    EXPECT_EQ(8u, buffered.readFully(buffer, 8));
    EXPECT_EQ(buffered.m_bytes.substr(0, 8), std::string(buffer.str(), buffer.pcount()));
    EXPECT_THROW(buffered.reset(), char const*);
}
