#include <atomic>
#include <csignal>
#include <filesystem>
#include <random>
#include <thread>
#include <vector>

#include <sys/resource.h>

#include "platform/KRYStarted.h"
#include "support/TemporaryFolder.h"

namespace
{
namespace fs = std::filesystem;

constexpr std::size_t s_segment = 65536;
constexpr std::size_t s_tag = 16;
constexpr std::size_t s_sealedSegment = s_segment + s_tag;
constexpr std::size_t s_header = 52;
constexpr std::size_t s_sizes[] = {
    0, 1, s_segment - 1, s_segment, s_segment + 1, 2 * s_segment, 3 * s_segment + 5};

std::string plainOf(std::size_t size)
{
    std::minstd_rand random(static_cast<unsigned>(size + 1));
    std::string plain(size, '\0');
    for (char& byte : plain)
        byte = static_cast<char>(random());
    return plain;
}

struct KRYEncryptedFile : KRYStarted
{
    // The bytes of an encrypted file, written in pieces of these sizes, over and over.
    std::string seal(std::string const& plain, std::vector<std::size_t> const& pieces = {1000000})
    {
        KRYTestSession session;
        EXPECT_EQ(KRY_SUCCESS, session.cipher(m_path));
        for (std::size_t i = 0, at = 0; at < plain.size(); at += pieces[i++ % pieces.size()])
            EXPECT_EQ(KRY_SUCCESS, session.protect(plain.substr(at, pieces[i % pieces.size()])));
        EXPECT_EQ(KRY_SUCCESS, session.finish());
        return readAll(m_path);
    }

    // Reads a file of these bytes as far as it goes: success if it reports a clean end.
    std::int32_t unseal(std::string const& sealed, std::string& plain, std::string const& service = "ARXIUM",
                        std::uint32_t wanted = 0)
    {
        writeFile(m_path, sealed);
        KRYTestSession session(service);
        std::int32_t const status = session.decipher(m_path);
        return KRY_SUCCEEDED(status) ? session.readAll(plain, wanted) : status;
    }

    void expectPlain(std::string const& plain, std::string const& sealed, std::uint32_t wanted = 0)
    {
        std::string out;
        EXPECT_EQ(KRY_SUCCESS, unseal(sealed, out, "ARXIUM", wanted));
        EXPECT_TRUE(plain == out) << plain.size();
    }

    // Damage is reported, and what is returned before is right.
    void expectDamaged(std::string const& sealed, std::string const& plain)
    {
        std::string out;
        EXPECT_EQ(KRY_ERROR_DAMAGED, unseal(sealed, out));
        EXPECT_EQ(plain.substr(0, out.size()), out);
    }

    std::ptrdiff_t countNames() const
    {
        return std::distance(fs::directory_iterator(m_folder.path()), fs::directory_iterator());
    }

    std::string m_path = m_folder / "file";
};
}  // namespace

TEST_F(KRYEncryptedFile, ComesBackBitForBitWhateverThePieces)
{
    std::vector<std::vector<std::size_t>> const pieces = {
        {1000000}, {s_segment}, {1, s_segment, 7}, {s_segment - 1, 1}, {100, 2 * s_segment}, {4096}};
    for (std::size_t const size : s_sizes)
        for (auto const& each : pieces)
        {
            std::string const plain = plainOf(size);
            std::string const sealed = seal(plain, each);
            std::size_t const segments = size == 0 ? 1 : (size + s_segment - 1) / s_segment;
            EXPECT_EQ(s_header + size + segments * s_tag, sealed.size());
            EXPECT_TRUE(size < 16 || sealed.find(plain.substr(0, 16)) == std::string::npos);
            EXPECT_NE(sealed, seal(plain, each)) << "each file has a key of its own";
            EXPECT_EQ(1, countNames());
            for (std::uint32_t const wanted : {0u, 1000u, 0xFFFFFFFFu})
                expectPlain(plain, sealed, wanted);
        }
}

TEST_F(KRYEncryptedFile, IsRefusedIfAByteDiffers)
{
    for (std::size_t const size : s_sizes)
    {
        std::string const plain = plainOf(size), sealed = seal(plain);
        for (std::size_t offset = 0; offset < sealed.size(); ++offset)
        {
            // All around the header, the joints of segments and the end, a sample of the rest.
            bool const isTried = offset < s_header + 20 || sealed.size() - offset <= 20 ||
                                 (offset + s_sealedSegment - s_header + 17) % s_sealedSegment < 21;
            if (!isTried && offset % 997 != 0)
                continue;
            SCOPED_TRACE(offset);
            expectDamaged(sealed.substr(0, offset), plain);
            std::string flipped = sealed;
            flipped[offset] = static_cast<char>(flipped[offset] ^ (1 << offset % 8));
            expectDamaged(flipped, plain);
        }
        for (std::size_t const count : {std::size_t{1}, s_tag, s_sealedSegment})
            expectDamaged(sealed + std::string(count, '\0'), plain);
    }
}

TEST_F(KRYEncryptedFile, IsOpenedByEachKeyOfTheKeyFile)
{
    std::string const sealed = seal("data"), newKey(32, 'n'), otherKey(32, 'o');
    std::string out;
    EXPECT_EQ(KRY_ERROR_DAMAGED, unseal(sealed, out, "TALM"));
    startWithKey(newKey + otherKey + m_key);
    expectPlain("data", sealed);
    std::string const sealedAnew = seal("data");
    startWithKey(newKey);
    expectPlain("data", sealedAnew);
    KRYTestSession session;
    writeFile(m_path, sealed);
    EXPECT_EQ(KRY_ERROR_DAMAGED, session.decipher(m_path));
    EXPECT_EQ("the file was written under a key that the key file does not hold", session.lastFailure());
}

TEST_F(KRYEncryptedFile, TheResultOfReadingStays)
{
    std::string sealed = seal(plainOf(2 * s_segment));
    for (std::int32_t const status : {KRY_SUCCESS, KRY_ERROR_DAMAGED})
    {
        writeFile(m_path, sealed);
        KRYTestSession session;
        std::string out;
        ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path));
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(status, session.readAll(out));
        EXPECT_EQ(status == KRY_SUCCESS ? 2 * s_segment : 0, out.size());
        EXPECT_EQ(KRY_ERROR_FILE, session.decipher(m_folder.path()));
        EXPECT_EQ(KRY_ERROR_STATE, session.readAll(out)) << "the file before is not read on";
        sealed[s_header + 9] ^= 1;
    }
}

TEST_F(KRYEncryptedFile, IsReadFromAnyPlace)
{
    std::string const plain = plainOf(2 * s_segment + 5);
    seal(plain);
    std::size_t const offsets[] = {1,           s_segment - 1, s_segment, 2 * s_segment, plain.size() - 1,
                                   plain.size()};
    for (std::size_t const offset : offsets)
    {
        SCOPED_TRACE(offset);
        KRYTestSession session;
        std::string out;
        ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path, std::to_string(offset)));
        EXPECT_EQ(KRY_SUCCESS, session.readAll(out));
        EXPECT_TRUE(plain.substr(offset) == out);
    }
    KRYTestSession session;
    EXPECT_EQ(KRY_ERROR_ARGUMENT, session.decipher(m_path, std::to_string(plain.size() + 1)));
    EXPECT_EQ(KRY_ERROR_STATE, session.unprotect()) << "the session has no set-up";
}

TEST_F(KRYEncryptedFile, ReadingInTheMiddleLooksAtNoOtherSegment)
{
    std::string sealed = seal(plainOf(3 * s_segment));
    sealed[s_header] ^= 1;
    sealed.back() ^= 1;
    writeFile(m_path, sealed);
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path, std::to_string(s_segment)));
    EXPECT_EQ(KRY_SUCCESS, session.unprotect());
    EXPECT_EQ(KRY_ERROR_DAMAGED, session.unprotect());
}

TEST_F(KRYEncryptedFile, TellsItsSizeOnlyIfItIsWhole)
{
    KRYTestSession session;
    for (std::size_t const size : s_sizes)
    {
        SCOPED_TRACE(size);
        std::string const plain = plainOf(size);
        std::string sealed = seal(plain), out;
        ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path));
        EXPECT_EQ(KRY_SUCCESS, session.unprotect(1, &out));
        EXPECT_EQ(std::to_string(size), session.getInfo("size"));
        EXPECT_EQ(KRY_SUCCESS, session.readAll(out));
        EXPECT_TRUE(plain == out) << "asking moves nothing";

        sealed.resize(sealed.size() > s_header + s_sealedSegment ? s_header + s_sealedSegment : s_header);
        writeFile(m_path, sealed);
        ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path));
        EXPECT_EQ("", session.getInfo("size"));
        EXPECT_EQ(
            "the encrypted file is " +
                std::string(sealed.size() == s_header ? "cut off" : "damaged or belongs to another service"),
            session.lastFailure());
    }
}

TEST_F(KRYEncryptedFile, NamesAreTakenRaw)
{
    CurrentFolder const current(m_folder.path());
    for (char const* const name :
         {"a&amp;b<c>\"'", "\xff\xfe\n", "</fileOutput>", "x</fileOutput><action>CSKHMAC<",
          "x</fileInput><fileInput>", "x</fileInput><offset>1<"})
    {
        m_path = name;
        fs::create_directories(fs::absolute(m_path).parent_path());  // the "/" of an end tag ends a folder
        expectPlain(name, seal(name));
    }
}

TEST_F(KRYEncryptedFile, SetUpsFollowOneAnother)
{
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, session.finish()) << "no file is being written";
    EXPECT_EQ(KRY_ERROR_STATE, session.protect(""));
    mode_t const before = umask(027);
    ASSERT_EQ(KRY_SUCCESS, session.cipher(m_path));
    umask(before);
    EXPECT_EQ(KRY_SUCCESS, session.protect("")) << "no end without the closing document";
    for (std::int32_t const status : {session.cipher(m_folder / "second"), session.sign()})
        EXPECT_EQ(KRY_ERROR_STATE, status);
    EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
    EXPECT_EQ(KRY_SUCCESS, session.closingDocument());
    EXPECT_EQ(KRY_ERROR_STATE, session.protect("late"));
    EXPECT_FALSE(fs::exists(m_path));
    EXPECT_EQ(KRY_SUCCESS, session.finish());
    EXPECT_EQ(fs::perms{0640}, fs::status(m_path).permissions());
    fs::permissions(m_path, fs::perms{0604});
    seal("data");
    EXPECT_EQ(fs::perms{0604}, fs::status(m_path).permissions()) << "the mode of the file that is replaced";
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    expectPlain("data", readAll(m_path));
}

TEST_F(KRYEncryptedFile, AFailedWriteIsFinal)
{
    writeFile(m_path, "old");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited;
    getrlimit(RLIMIT_FSIZE, &unlimited);
    rlimit const limited{s_segment, unlimited.rlim_max};
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, session.cipher(m_path));
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limited));
    EXPECT_EQ(KRY_ERROR_FILE, session.protect(plainOf(3 * s_segment)));
    setrlimit(RLIMIT_FSIZE, &unlimited);
    EXPECT_EQ(KRY_ERROR_FILE, session.protect("x"));
    EXPECT_EQ(KRY_ERROR_FILE, session.finish());
    EXPECT_EQ("file " + m_path + " can't be written: File too large", session.lastFailure());
    EXPECT_EQ("old", readAll(m_path));
    EXPECT_EQ(KRY_SUCCESS, session.finish()) << "the session has no set-up";
}

TEST_F(KRYEncryptedFile, IsDiscardedOnceTheCallInItsSessionEnds)
{
    writeFile(m_path, "old");
    std::string const piece = plainOf(10 * s_segment);
    for (bool const isStop : {false, true})
    {
        KRYTestSession session;
        EXPECT_EQ(KRY_SUCCESS, session.cipher(m_path));
        std::atomic<int> writes{0};
        auto const write = [&]
        {
            while (KRY_SUCCEEDED(session.protect(piece)))
                ++writes;
        };
        std::thread writer(write);
        while (writes < 2)
            std::this_thread::yield();
        void* token = session.m_session;
        EXPECT_EQ(KRY_SUCCESS, isStop ? stop(s_service) : KRY_CloseHandle(&token, nullptr, nullptr));
        EXPECT_EQ("old", readAll(m_path));
        EXPECT_EQ(1, countNames());
        writer.join();
    }
}
