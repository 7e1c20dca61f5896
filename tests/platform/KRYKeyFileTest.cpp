#include <array>
#include <filesystem>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

#include "platform/KRYStarted.h"

namespace
{
namespace fs = std::filesystem;

struct KeyFileCase
{
    char const* m_name;
    std::size_t m_size;
    mode_t m_mode;
    char const* m_reason;  // behind the path
};

KeyFileCase const s_cases[] = {
    {"good", 32, 0600, ""},
    {"read only", 32, 0400, ""},
    {"group", 32, 0640, " is open to group or others"},
    {"others", 32, 0602, " is open to group or others"},
    {"short", 31, 0600, " does not hold exactly 32 bytes"},
    {"long", 33, 0600, " does not hold exactly 32 bytes"},
};

class KRYKeyFile : public testing::Test
{
protected:
    ~KRYKeyFile() override { NEBConfigurationStore::getStore().clear(); }

    // What a start says about a configured key file.
    std::string reasonFor(std::string const& path)
    {
        NEBConfigurationStore::getStore().setValue("cryptoKeyFile", path.c_str());
        std::string text;
        bool const started = KRY_SUCCEEDED(start(s_service, &text));
        EXPECT_EQ(started, KRY_SUCCEEDED(stop(s_service)));
        return text;
    }

    TemporaryFolder m_folder;
};

// A digest under the key that a start finds; empty if it does not start.
std::string digestUnderFoundKey()
{
    std::string digest;
    if (start(s_service) != KRY_SUCCESS)
        return digest;
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ(KRY_SUCCESS, session.protect("data", &digest));
    EXPECT_EQ(KRY_SUCCESS, stop(s_service));
    return digest;
}
}  // namespace

TEST_F(KRYKeyFile, MustKeepItsRules)
{
    for (KeyFileCase const& row : s_cases)
    {
        std::string const path = m_folder / row.m_name;
        writeFile(path, std::string(row.m_size, 'k'), row.m_mode);
        EXPECT_EQ(*row.m_reason ? "key file " + path + row.m_reason : "", reasonFor(path));
    }
    std::string const missing = m_folder / "missing";
    EXPECT_EQ("key file " + missing + " can't be opened: No such file or directory", reasonFor(missing));
    std::string const pipe = m_folder / "pipe";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    for (std::string const& path : {pipe, m_folder.path()})
        EXPECT_EQ("key file " + path + " is no regular file", reasonFor(path));
    if (geteuid() != 0)
        return;  // only root can give files away
    ASSERT_EQ(0, chown((m_folder / "good").c_str(), 1, 1));
    EXPECT_EQ("key file " + (m_folder / "good") + " belongs to another user", reasonFor(m_folder / "good"));
}

TEST_F(KRYKeyFile, IsMadeOnceByProcessesThatStartTogether)
{
    setenv("XDG_STATE_HOME", (m_folder / "a/b").c_str(), 1);
    std::array<int, 2> ends;
    ASSERT_EQ(0, pipe(ends.data()));
    int const processes = 8;
    for (int i = 0; i < processes; ++i)
        if (fork() == 0)
        {
            std::string const digest = digestUnderFoundKey();
            _exit(write(ends[1], digest.data(), digest.size()) == 32 ? 0 : 1);
        }
    std::set<std::string> digests = {digestUnderFoundKey()};
    for (int i = 0; i < processes; ++i)
    {
        int status = -1;
        wait(&status);
        EXPECT_EQ(0, status);
        std::string digest(32, '\0');
        ASSERT_EQ(32, read(ends[0], digest.data(), digest.size()));
        digests.insert(digest);
    }
    ::close(ends[0]);
    ::close(ends[1]);
    EXPECT_EQ(1u, digests.size());

    fs::path const folder = m_folder / "a/b/arxium";
    fs::path const key = folder / "master.key";
    EXPECT_EQ(fs::perms{0700}, fs::status(folder).permissions());
    EXPECT_EQ(fs::perms{0700}, fs::status(folder.parent_path()).permissions());
    EXPECT_EQ(fs::perms{0600}, fs::status(key).permissions());
    EXPECT_EQ(32u, fs::file_size(key));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    chmod(key.c_str(), 0644);
    EXPECT_EQ(KRY_ERROR_KEY, start(s_service)) << "a file that was made follows the rules too";
}

TEST_F(KRYKeyFile, IsSoughtInTheHomeFolderNext)
{
    setenv("XDG_STATE_HOME", "relative", 1);
    setenv("HOME", m_folder.path().c_str(), 1);
    EXPECT_EQ(32u, digestUnderFoundKey().size());
    EXPECT_TRUE(fs::exists(m_folder / ".local/state/arxium/master.key"));
    unsetenv("HOME");
    EXPECT_EQ("no place for the key file: none of cryptoKeyFile, XDG_STATE_HOME and HOME is set",
              reasonFor(""));
}
