#include <csignal>
#include <filesystem>
#include <random>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/KRYStarted.h"

namespace
{
constexpr std::size_t s_segment = 65536;
constexpr std::size_t s_tag = 16;
constexpr std::size_t s_header = 52;
std::size_t const s_sizes[] = {
    0, 1, s_segment - 1, s_segment, s_segment + 1, 2 * s_segment, 3 * s_segment + 5};

std::string plainOf(std::size_t size)
{
    std::minstd_rand random(static_cast<unsigned>(size + 1));
    std::string plain(size, '\0');
    for (char& byte : plain)
        byte = static_cast<char>(random());
    return plain;
}

class KRYEncryptedFile : public KRYStarted
{
protected:
    // The bytes of an encrypted file, written in pieces of the sizes given, one after the other, over and
    // over.
    std::string seal(std::string const& plain, std::vector<std::size_t> const& pieces = {1000000})
    {
        KRYTestSession session("ARXIUM");
        EXPECT_EQ(KRY_SUCCESS, session.cipher(m_path));
        std::string_view rest(plain);
        for (std::size_t i = 0; !rest.empty(); ++i)
        {
            std::string_view const piece = rest.substr(0, pieces[i % pieces.size()]);
            EXPECT_EQ(KRY_SUCCESS, session.protect(piece));
            rest.remove_prefix(piece.size());
        }
        EXPECT_EQ(KRY_SUCCESS, session.finish());
        return readFile(m_path);
    }

    // Reads a file of these bytes as far as it goes: success if it reports a clean end.
    std::int32_t unseal(std::string const& sealed, std::string& plain, std::string const& service = "ARXIUM")
    {
        writeFile(m_path, sealed);
        KRYTestSession session(service);
        std::int32_t const status = session.decipher(m_path);
        return KRY_SUCCEEDED(status) ? session.readAll(plain) : status;
    }

    // Damage must be told, and what is given out before must be right.
    void expectDamaged(std::string const& sealed, std::string const& plain, std::string const& what)
    {
        std::string out;
        EXPECT_EQ(KRY_ERROR_DAMAGED, unseal(sealed, out)) << what;
        EXPECT_EQ(plain.substr(0, out.size()), out) << what;
        ++m_damages;
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(m_folder.path()))
            names.push_back(entry.path().filename());
        return names;
    }

    std::string const m_path = m_folder / "file";
    std::vector<std::string> const m_fileAlone = {"file"};
    int m_damages = 0;
};

// Writes of files behind this size fail, for the lifetime of the object.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit const limit = {size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before{};
    void (*m_handler)(int);
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
            EXPECT_EQ(m_fileAlone, names());
            for (std::uint32_t const wanted : {0u, 1000u, 0xFFFFFFFFu})
            {
                KRYTestSession session("ARXIUM");
                ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path));
                std::string out;
                EXPECT_EQ(KRY_SUCCESS, session.readAll(out, wanted)) << size;
                EXPECT_TRUE(plain == out) << size;
                EXPECT_EQ(KRY_SUCCESS, session.read(out)) << "the end stays the end";
            }
        }
}

TEST_F(KRYEncryptedFile, CutsFlipsAndAdditionsAreDamage)
{
    auto const nearEdge = [](std::size_t offset, std::size_t size)
    {
        std::size_t const inSegment = offset < s_header ? 0 : (offset - s_header) % (s_segment + s_tag);
        return offset < s_header + 20 || size - offset <= 20 || inSegment < 4 || inSegment >= s_segment - 1 ||
               offset % 1499 == 0;
    };
    for (std::size_t const size :
         {std::size_t{0}, std::size_t{1}, s_segment, s_segment + 1, 3 * s_segment + 5})
    {
        std::string const plain = plainOf(size);
        std::string const sealed = seal(plain);
        for (std::size_t offset = 0; offset < sealed.size(); ++offset)
        {
            if (!nearEdge(offset, sealed.size()))
                continue;
            expectDamaged(sealed.substr(0, offset), plain, "cut at " + std::to_string(offset));
            std::string flipped = sealed;
            flipped[offset] = static_cast<char>(flipped[offset] ^ (1 << offset % 8));
            expectDamaged(flipped, plain, "flip at " + std::to_string(offset));
        }
        for (std::size_t const count : {std::size_t{1}, s_tag, s_segment + s_tag})
            expectDamaged(sealed + std::string(count, '\0'), plain, "appended " + std::to_string(count));
    }
    EXPECT_LT(1400, m_damages);
}

TEST_F(KRYEncryptedFile, OtherOrdersOfSegmentsAreDamage)
{
    std::string const plain = plainOf(3 * s_segment + 5);
    std::string const sealed = seal(plain);
    std::string const other = seal(plain);
    auto const segment = [](std::string const& file, std::size_t index)
    { return file.substr(s_header + index * (s_segment + s_tag), s_segment + s_tag); };
    // Segments 0 to 3 are the file's own, 4 to 7 those of another file of the same data.
    std::vector<std::vector<std::size_t>> const orders = {
        {},           {0},          {3},          {0, 1, 2},       {0, 1, 3},          {1, 2, 3},
        {1, 0, 2, 3}, {0, 2, 1, 3}, {0, 1, 3, 2}, {0, 0, 1, 2, 3}, {0, 1, 2, 2, 3},    {0, 1, 2, 3, 3},
        {4, 1, 2, 3}, {0, 5, 2, 3}, {0, 1, 2, 7}, {4, 5, 6, 7},    {0, 1, 2, 3, 0, 1}, {0, 1, 2, 3, 4},
    };
    for (auto const& order : orders)
    {
        std::string mixed = sealed.substr(0, s_header);
        for (std::size_t const index : order)
            mixed += segment(index < 4 ? sealed : other, index % 4);
        expectDamaged(mixed, plain, testing::PrintToString(order));
    }
    expectDamaged(other.substr(0, s_header) + sealed.substr(s_header), plain, "header of another file");
}

TEST_F(KRYEncryptedFile, BelongsToItsServiceAndItsKey)
{
    std::string const sealed = seal("data");
    std::string out;
    EXPECT_EQ(KRY_ERROR_DAMAGED, unseal(sealed, out, "TALM"));
    useKey(std::string(32, 'o'));
    restart();
    EXPECT_EQ(KRY_ERROR_DAMAGED, unseal(sealed, out));
    EXPECT_EQ("", out);
    useKey(m_key);
    restart();
    EXPECT_EQ(KRY_SUCCESS, unseal(sealed, out));
    EXPECT_EQ("data", out);
}

TEST_F(KRYEncryptedFile, ErrorsOfReadingStay)
{
    std::string sealed = seal(plainOf(2 * s_segment));
    sealed[s_header + 9] ^= 1;
    writeFile(m_path, sealed);
    KRYTestSession session("ARXIUM");
    ASSERT_EQ(KRY_SUCCESS, session.decipher(m_path));
    std::string out;
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(KRY_ERROR_DAMAGED, session.read(out));
    EXPECT_EQ(KRY_ERROR_FILE, session.decipher(m_folder / "missing"));
    EXPECT_EQ(KRY_ERROR_STATE, session.read(out)) << "the file before is not read on";
    EXPECT_EQ(KRY_ERROR_FILE, session.decipher(m_folder.path()));
}

TEST_F(KRYEncryptedFile, NamesAreTakenRaw)
{
    std::string const names[] = {"a&amp;b<c>\"'",
                                 "\xff\xfe\n",
                                 "</fileOutput>",
                                 "x</fileOutput><action>CSKHMAC<",
                                 "x</fileInput><fileInput>",
                                 std::string(255, 'n')};
    for (std::string const& name : names)
    {
        // A separator inside would name a folder, which a name with an end tag in it then needs.
        std::string const path = m_folder / name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        KRYTestSession session("ARXIUM");
        ASSERT_EQ(KRY_SUCCESS, session.cipher(path)) << session.lastFailure();
        EXPECT_EQ(KRY_SUCCESS, session.protect(name));
        EXPECT_EQ(KRY_SUCCESS, session.finish());
        EXPECT_TRUE(std::filesystem::is_regular_file(path)) << name;
        std::string out;
        EXPECT_EQ(KRY_SUCCESS, session.decipher(path));
        EXPECT_EQ(KRY_SUCCESS, session.readAll(out));
        EXPECT_EQ(name, out);
    }
    CurrentFolder const current(m_folder.path());
    KRYTestSession session("ARXIUM");
    EXPECT_EQ(KRY_SUCCESS, session.cipher("bare"));
    EXPECT_EQ(KRY_SUCCESS, session.finish());
    EXPECT_TRUE(std::filesystem::exists("bare"));
}

TEST_F(KRYEncryptedFile, SetUpsFollowOneAnother)
{
    KRYTestSession session("ARXIUM");
    EXPECT_EQ(KRY_SUCCESS, session.finish()) << "no file is being written";
    EXPECT_EQ(KRY_ERROR_STATE, session.protect(""));
    ASSERT_EQ(KRY_SUCCESS, session.cipher(m_path));
    EXPECT_EQ(KRY_SUCCESS, session.protect("")) << "no end without the closing document";
    EXPECT_EQ(KRY_ERROR_STATE, session.cipher(m_folder / "second"));
    EXPECT_EQ(KRY_ERROR_STATE, session.decipher(m_path));
    EXPECT_EQ(KRY_ERROR_STATE, session.sign());
    EXPECT_EQ(KRY_SUCCESS, session.protect("data"));
    EXPECT_EQ(KRY_SUCCESS, session.closingDocument());
    EXPECT_EQ(KRY_ERROR_STATE, session.protect("late"));
    EXPECT_FALSE(std::filesystem::exists(m_path));
    EXPECT_EQ(KRY_SUCCESS, session.finish());
    std::string out;
    EXPECT_EQ(KRY_SUCCESS, unseal(readFile(m_path), out));
    EXPECT_EQ("data", out);
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ(m_fileAlone, names());
}

TEST_F(KRYEncryptedFile, OnlyRegularFilesAreReplaced)
{
    mkfifo((m_folder / "pipe").c_str(), 0600);
    mkdir((m_folder / "folder").c_str(), 0700);
    std::filesystem::create_symlink("file", m_folder / "link");
    auto const before = names();
    for (std::string const name : {"pipe", "folder", "link", "folder/", "folder/.", "missing/file", ""})
    {
        KRYTestSession session("ARXIUM");
        EXPECT_EQ(KRY_ERROR_FILE, session.cipher(m_folder / name)) << name;
        EXPECT_EQ(KRY_ERROR_STATE, session.protect("x"));
        EXPECT_EQ(KRY_SUCCESS, session.finish());
    }
    EXPECT_EQ(before, names());
}

TEST_F(KRYEncryptedFile, ModeFollowsTheUmask)
{
    mode_t const before = umask(027);
    seal("data");
    umask(before);
    EXPECT_EQ(std::filesystem::perms{0640}, std::filesystem::status(m_path).permissions());
}

TEST_F(KRYEncryptedFile, UnfinishedFilesAreDiscarded)
{
    writeFile(m_path, "old");
    for (bool const reap : {false, true})
    {
        KRYTestSession session("ARXIUM");
        ASSERT_EQ(KRY_SUCCESS, session.cipher(m_path));
        EXPECT_EQ(KRY_SUCCESS, session.protect(plainOf(3 * s_segment)));
        EXPECT_EQ(2u, names().size());
        if (reap)
            restart();
        else
            EXPECT_EQ(KRY_SUCCESS, session.close());
        EXPECT_EQ(m_fileAlone, names());
        EXPECT_EQ("old", readFile(m_path));
    }
}

TEST_F(KRYEncryptedFile, AFailedWritePoisonsTheFile)
{
    writeFile(m_path, "old");
    for (std::size_t const size : {std::size_t{200}, 3 * s_segment})  // fails in finishing, and before
    {
        FileSizeLimit const limit(size / 2);
        KRYTestSession session("ARXIUM");
        ASSERT_EQ(KRY_SUCCESS, session.cipher(m_path));
        bool const early = size > s_segment;
        EXPECT_EQ(early ? KRY_ERROR_FILE : KRY_SUCCESS, session.protect(plainOf(size)));
        EXPECT_EQ(early ? KRY_ERROR_FILE : KRY_SUCCESS, session.protect("x"));
        EXPECT_EQ(KRY_ERROR_FILE, session.finish());
        EXPECT_EQ("temporary file of file can't be written: File too large", session.lastFailure());
        EXPECT_EQ(m_fileAlone, names());
        EXPECT_EQ("old", readFile(m_path));
        EXPECT_EQ(KRY_SUCCESS, session.finish()) << "the session is idle";
    }
}

TEST_F(KRYEncryptedFile, AKilledWriterLeavesTheOldFile)
{
    writeFile(m_path, "old");
    pid_t const child = fork();
    if (child == 0)
    {
        KRYTestSession session("ARXIUM");
        session.cipher(m_path);
        session.protect(plainOf(3 * s_segment));
        session.closingDocument();
        std::raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ("old", readFile(m_path));
    std::string out;
    EXPECT_EQ(KRY_SUCCESS, unseal(seal("new"), out)) << "what it left behind is in nobody's way";
    EXPECT_EQ("new", out);
}
