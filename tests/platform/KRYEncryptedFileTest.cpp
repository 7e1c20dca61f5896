#include <atomic>
#include <thread>

#include "platform/KRYStarted.h"

namespace
{
constexpr std::size_t s_segment = 65536;
constexpr std::size_t s_tag = 16;
constexpr std::size_t s_header = 52;

struct KRYEncryptedFile : KRYStarted
{
    // The bytes of an encrypted file, written in pieces of a size.
    std::string seal(std::string const& plain, std::size_t piece = 1000000)
    {
        KRYTestSession session;
        EXPECT_EQ(KRY_SUCCESS, session.cipher(m_path));
        for (std::size_t at = 0; at < plain.size(); at += piece)
            EXPECT_EQ(KRY_SUCCESS, session.protect(plain.substr(at, piece)));
        EXPECT_EQ(KRY_SUCCESS, session.finish());
        return readAll(m_path);
    }

    // Appends to plain as much of a file of these bytes as can be read: success if there is a clean end.
    std::int32_t unseal(std::string const& sealed, std::string& plain, std::string const& service = "ARXIUM")
    {
        writeFile(m_path, sealed);
        KRYTestSession session(service);
        std::int32_t const status = session.decipher(m_path);
        return KRY_SUCCEEDED(status) ? session.readAll(plain) : status;
    }

    // Nothing of the file is returned, not even its size.
    void expectDamaged(std::string const& sealed)
    {
        std::string out;
        EXPECT_EQ(KRY_ERROR_DAMAGED, unseal(sealed, out));
        EXPECT_EQ("", out);
        KRYTestSession session;
        session.decipher(m_path);
        EXPECT_EQ("", session.getInfo("size"));
    }

    std::string m_path = m_folder / "a&amp;b<c>\"'\xff\n";  // names are taken raw
};
}  // namespace

TEST_F(KRYEncryptedFile, ComesBackFromEachPlaceInAnyPieces)
{
    for (std::size_t const size : {std::size_t{0}, s_segment - 1, s_segment, s_segment + 1, 2 * s_segment})
        for (std::size_t const piece : {std::size_t{999}, s_segment, 2 * s_segment})
        {
            SCOPED_TRACE(std::to_string(size) + " bytes in pieces of " + std::to_string(piece));
            std::string const plain = bytesOf(size);
            std::string const sealed = seal(plain, piece);
            EXPECT_EQ(s_header + size + (size <= s_segment ? 1 : 2) * s_tag, sealed.size());
            EXPECT_NE(sealed, seal(plain, piece)) << "each file has a key of its own";
            KRYTestSession session;
            std::string out;
            for (std::size_t const place : {std::size_t{0}, size / 2, size})
            {
                ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path, place));
                EXPECT_EQ(std::to_string(size), session.getInfo("size"));
                out.clear();
                EXPECT_EQ(KRY_SUCCESS, session.readAll(out, static_cast<std::uint32_t>(piece)));
                EXPECT_TRUE(plain.substr(place) == out);
            }
            EXPECT_EQ(KRY_ERROR_ARGUMENT, session.decipher(m_path, size + 1));
            EXPECT_EQ(KRY_ERROR_STATE, session.readAll(out)) << "the session has no set-up";
        }
}

TEST_F(KRYEncryptedFile, IsRefusedIfAByteDiffers)
{
    std::string const sealed = seal("plain");
    for (std::size_t offset = 0; offset < sealed.size(); ++offset)
    {
        SCOPED_TRACE(offset);
        expectDamaged(sealed.substr(0, offset));
        std::string flipped = sealed;
        flipped[offset] = static_cast<char>(flipped[offset] ^ (1 << offset % 8));
        expectDamaged(flipped);
    }
    expectDamaged(sealed + '\0');
    std::size_t const firstSegment = s_segment + s_tag;
    expectDamaged(seal(bytesOf(s_segment + 1)).substr(0, s_header + firstSegment));
}

TEST_F(KRYEncryptedFile, IsOpenedByEachKeyOfTheKeyFile)
{
    std::string const sealed = seal("data"), newKey(32, 'n'), otherKey(32, 'o');
    std::string out;
    EXPECT_EQ(KRY_ERROR_DAMAGED, unseal(sealed, out, "TALM"));
    startWithKey(newKey + otherKey + m_key);
    EXPECT_EQ(KRY_SUCCESS, unseal(sealed, out));
    std::string const sealedAnew = seal(" and more");
    startWithKey(newKey);
    EXPECT_EQ(KRY_SUCCESS, unseal(sealedAnew, out));
    EXPECT_EQ("data and more", out);
    expectDamaged(sealed);
}

TEST_F(KRYEncryptedFile, IsReadAroundDamageButNotAfterIt)
{
    std::string const plain = bytesOf(3 * s_segment);
    std::string sealed = seal(plain), out;
    sealed[s_header] ^= 1;
    sealed.back() ^= 1;
    writeFile(m_path, sealed);
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path, s_segment));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(KRY_ERROR_DAMAGED, session.readAll(out));
    EXPECT_TRUE(plain.substr(s_segment, s_segment) == out);
}

TEST_F(KRYEncryptedFile, SetUpsFollowOneAnother)
{
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, session.finish()) << "no file is being written";
    EXPECT_EQ(KRY_ERROR_STATE, session.protect(""));
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    ASSERT_EQ(KRY_SUCCESS, session.cipher(m_path));
    EXPECT_EQ(KRY_SUCCESS, session.protect("")) << "no end without the closing document";
    EXPECT_EQ(KRY_ERROR_STATE, session.cipher(m_folder / "second"));
    EXPECT_EQ(KRY_ERROR_STATE, session.sign());
    EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
    EXPECT_EQ(KRY_SUCCESS, session.closingDocument());
    EXPECT_EQ(KRY_ERROR_STATE, session.protect("late"));
    EXPECT_EQ("", readAll(m_path));
    EXPECT_EQ(KRY_SUCCESS, session.finish());
    std::string out;
    EXPECT_EQ(KRY_SUCCESS, unseal(readAll(m_path), out));
    EXPECT_EQ("data", out);
}

TEST_F(KRYEncryptedFile, FailsAtEachTryToFinish)
{
    KRYTestSession session;
    ASSERT_EQ(KRY_SUCCESS, session.cipher(m_path));
    std::filesystem::create_directory(m_path);
    EXPECT_EQ(KRY_ERROR_FILE, session.finish());
    EXPECT_EQ(KRY_ERROR_FILE, session.finish());
}

TEST_F(KRYEncryptedFile, IsDiscardedOnceTheCallInItsSessionEnds)
{
    writeFile(m_path, "old");
    std::string const piece = bytesOf(10 * s_segment);
    for (bool const isStop : {false, true})
    {
        KRYTestSession session;
        ASSERT_EQ(KRY_SUCCESS, session.cipher(m_path));
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
        EXPECT_EQ(KRY_SUCCESS, isStop ? stop() : KRY_CloseHandle(&token, nullptr, nullptr));
        std::filesystem::directory_iterator const entries(m_folder.path());
        EXPECT_EQ(1, std::distance(begin(entries), end(entries))) << "the temporary file is gone";
        writer.join();
    }
    EXPECT_EQ("old", readAll(m_path));
}
