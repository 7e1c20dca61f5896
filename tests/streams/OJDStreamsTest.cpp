#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <iterator>

#include <gtest/gtest.h>

#include "NEBCore/NEBException.h"
#include "OJDStreamsDLL/OJDFileOutputStream.h"
#include "OJDStreamsDLL/OJDInputStream.h"
#include "support/TemporaryFolder.h"

namespace
{
std::string contents(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Bytes that differ from place to place.
std::string sample(std::size_t size)
{
    std::string bytes;
    while (bytes.size() < size)
        bytes += std::to_string(bytes.size()) + ",";
    bytes.resize(size);
    return bytes;
}

void expectFailure(std::string const& text, std::function<void()> const& call)
{
    try
    {
        call();
        ADD_FAILURE() << "no failure, expected " << text;
    }
    catch (NEBException const& error)
    {
        EXPECT_EQ(text, error.getMessage());
    }
}

// Gives its bytes in pieces of at most three.
struct PieceStream : OJDInputStream
{
    using OJDInputStream::read;
    std::size_t read() override
    {
        return m_at == m_bytes.size() ? s_end : static_cast<unsigned char>(m_bytes[m_at++]);
    }
    std::size_t read(NEBByteBuffer& buf, std::size_t n) override
    {
        std::size_t const count = std::min<std::size_t>({n, 3, m_bytes.size() - m_at});
        buf.appendChars(m_bytes.data() + m_at, count);
        m_at += count;
        return count == 0 ? s_end : count;
    }

    std::string m_bytes =
        "0123456\xFF"
        "89";
    std::size_t m_at = 0;
};
}  // namespace

TEST(OJDFileOutputStream, ReplacesTheFileByWhatIsWrittenInAnyPieces)
{
    TemporaryFolder const folder;
    std::string const all = sample(200000);
    std::string const name = folder / "file";
    std::ofstream(name) << "what was there before";
    {
        OJDFileOutputStream stream(name.c_str(), 0);
        std::size_t at = 0;
        for (std::size_t const size : {0, 1, 16382, 1, 1, 16383, 16384, 16385, 5, 100000})
        {
            stream.write(all.data() + at, size);
            at += size;
        }
        stream.flush();
        EXPECT_EQ(all.substr(0, at), contents(name));
        stream.write(all.data() + at, all.size() - at);
    }
    EXPECT_EQ(all, contents(name));
}

TEST(OJDFileOutputStream, TellsWhatTheSystemRefusesAtEachStep)
{
    TemporaryFolder const folder;
    std::string const name = folder / "file";
    std::string const noSpace = "/dev/full: No space left on device";
    std::string const large = sample(20000);
    expectFailure(name + "/x: No such file or directory",
                  [&] { OJDFileOutputStream((name + "/x").c_str(), 0); });
    expectFailure(folder.path() + ": Is a directory", [&] { OJDFileOutputStream(folder.path().c_str(), 0); });

    OJDFileOutputStream full("/dev/full", 0);
    expectFailure(noSpace, [&] { full.write(large.data(), large.size()); });
    full.write("a", 1);
    expectFailure(noSpace, [&] { full.flush(); });
    expectFailure(noSpace, [&] { full.close(); });
    full.close();
    full.flush();
    expectFailure("/dev/full: no file is open", [&] { full.write("a", 1); });
    {
        OJDFileOutputStream dropped("/dev/full", 0);
        dropped.write("a", 1);
    }

    OJDFileOutputStream nameless(nullptr, 0);
    nameless.flush();
    nameless.close();
    expectFailure(": no file is open", [&] { nameless.write("a", 1); });
}

TEST(OJDFileOutputStream, KeepsTheRestOfARefusedFlushForTheNext)
{
    TemporaryFolder const folder;
    std::string const name = folder / "file";
    std::string const all = sample(30000);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit const before = []
    {
        rlimit limit;
        getrlimit(RLIMIT_FSIZE, &limit);
        return limit;
    }();
    rlimit const small = {20000, before.rlim_max};

    OJDFileOutputStream stream(name.c_str(), 0);
    stream.write(all.data(), 15000);
    stream.flush();
    stream.write(all.data() + 15000, 15000);
    setrlimit(RLIMIT_FSIZE, &small);
    expectFailure(name + ": File too large", [&] { stream.flush(); });
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(all.substr(0, 20000), contents(name));
    stream.close();
    EXPECT_EQ(all, contents(name));
}

TEST(OJDInputStream, ReadsFullyInBothFormsUpToTheEnd)
{
    PieceStream stream, other;
    char bytes[10];
    EXPECT_EQ(7u, stream.readFully(bytes, 7));
    EXPECT_EQ(3u, stream.read(bytes + 7, 3));
    EXPECT_EQ(stream.m_bytes, std::string(bytes, 10));
    EXPECT_EQ(0u, stream.readFully(bytes, 0));
    EXPECT_EQ(OJDInputStream::s_end, stream.readFully(bytes, 1));

    NEBByteBuffer buffer(256, 256);
    EXPECT_EQ(8u, other.readFully(buffer, 8));
    EXPECT_EQ(2u, other.readFully(buffer, 3));
    EXPECT_EQ(OJDInputStream::s_end, other.readFully(buffer, 1));
    EXPECT_EQ(other.m_bytes, std::string(buffer.str(), buffer.pcount()));
}

TEST(OJDInputStream, ThrowsAPlainTextForWhatItCannotDo)
{
    PieceStream stream;
    try
    {
        stream.reset();
        ADD_FAILURE();
    }
    catch (char const* text)
    {
        EXPECT_STREQ("not implemented", text);
    }
}
