#include <array>
#include <filesystem>
#include <functional>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

#include "platform/KRYStarted.h"

namespace
{
std::string const s_key(32, 'k');

struct KeyFileCase
{
    char const* m_name;
    std::function<void(std::string const& path)> m_make;
    std::int32_t m_status;
    char const* m_reason;  // behind the path
};

KeyFileCase const s_cases[] = {
    {"Good", [](auto& path) { writeFile(path, s_key, 0600); }, KRY_SUCCESS, ""},
    {"ReadOnly", [](auto& path) { writeFile(path, s_key, 0400); }, KRY_SUCCESS, ""},
    {"Missing", [](auto&) {}, KRY_ERROR_FILE, " can't be opened: No such file or directory"},
    {"Folder", [](auto& path) { mkdir(path.c_str(), 0700); }, KRY_ERROR_KEY, " is no regular file"},
    {"Pipe", [](auto& path) { mkfifo(path.c_str(), 0600); }, KRY_ERROR_KEY, " is no regular file"},
    {"OpenToGroup", [](auto& path) { writeFile(path, s_key, 0640); }, KRY_ERROR_KEY,
     " is open to group or others"},
    {"OpenToOthers", [](auto& path) { writeFile(path, s_key, 0602); }, KRY_ERROR_KEY,
     " is open to group or others"},
    {"Short", [](auto& path) { writeFile(path, s_key.substr(1)); }, KRY_ERROR_KEY,
     " does not hold exactly 32 bytes"},
    {"Long", [](auto& path) { writeFile(path, s_key + "\n"); }, KRY_ERROR_KEY,
     " does not hold exactly 32 bytes"},
};

class KRYKeyFile : public testing::Test
{
protected:
    ~KRYKeyFile() override { NEBConfigurationStore::getStore().clear(); }

    TemporaryFolder m_folder;
};

class KRYKeyFileRules : public KRYKeyFile, public testing::WithParamInterface<KeyFileCase>
{
};

// A digest under the key that a start finds; empty if it does not start.
std::string digestUnderFoundKey()
{
    std::string digest;
    if (startService("Arxium") != KRY_SUCCESS)
        return digest;
    KRYTestSession session("TALM");
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    EXPECT_EQ(KRY_SUCCESS, session.protect("data", &digest));
    EXPECT_EQ(KRY_SUCCESS, stopService("Arxium"));
    return digest;
}
}  // namespace

TEST_P(KRYKeyFileRules, DecideTheStart)
{
    std::string const path = m_folder / "key";
    GetParam().m_make(path);
    NEBConfigurationStore::getStore().setValue("cryptoKeyFile", path.c_str());
    std::string details;
    EXPECT_EQ(GetParam().m_status, startService("Arxium", &details));
    bool const refused = *GetParam().m_reason != '\0';
    EXPECT_EQ(refused ? "key file " + path + GetParam().m_reason : "", details);
    EXPECT_EQ(refused ? KRY_ERROR_STATE : KRY_SUCCESS, stopService("Arxium"));
}

INSTANTIATE_TEST_SUITE_P(Files, KRYKeyFileRules, testing::ValuesIn(s_cases),
                         [](auto const& row) { return row.param.m_name; });

TEST_F(KRYKeyFile, OfAnotherUserIsRefused)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    std::string const path = m_folder / "key";
    writeFile(path, s_key);
    ASSERT_EQ(0, chown(path.c_str(), 1, 1));
    NEBConfigurationStore::getStore().setValue("cryptoKeyFile", path.c_str());
    std::string details;
    EXPECT_EQ(KRY_ERROR_KEY, startService("Arxium", &details));
    EXPECT_EQ("key file " + path + " belongs to another user", details);
}

TEST_F(KRYKeyFile, IsMadeOnceByProcessesThatStartTogether)
{
    setenv("XDG_STATE_HOME", (m_folder / "a/b").c_str(), 1);
    std::array<int, 2> ends;
    ASSERT_EQ(0, pipe(ends.data()));
    std::size_t const processes = 8;
    for (std::size_t i = 0; i < processes; ++i)
        if (fork() == 0)
        {
            std::string const digest = digestUnderFoundKey();
            _exit(write(ends[1], digest.data(), digest.size()) == 32 ? 0 : 1);
        }
    std::set<std::string> digests = {digestUnderFoundKey()};
    for (std::size_t i = 0; i < processes; ++i)
    {
        int status = -1;
        wait(&status);
        EXPECT_EQ(0, status);
        std::array<char, 32> digest;
        ASSERT_EQ(32, read(ends[0], digest.data(), digest.size()));
        digests.emplace(digest.data(), digest.size());
    }
    ::close(ends[0]);
    ::close(ends[1]);
    EXPECT_EQ(1u, digests.size());

    namespace fs = std::filesystem;
    fs::path const folder = m_folder / "a/b/arxium";
    EXPECT_EQ(fs::perms::owner_all, fs::status(folder).permissions());
    EXPECT_EQ(fs::perms::owner_all, fs::status(folder.parent_path()).permissions());
    EXPECT_EQ(fs::perms::owner_read | fs::perms::owner_write,
              fs::status(folder / "master.key").permissions());
    EXPECT_EQ(32u, fs::file_size(folder / "master.key"));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(folder), fs::directory_iterator()));

    chmod((folder / "master.key").c_str(), 0644);
    EXPECT_EQ(KRY_ERROR_KEY, startService("Arxium")) << "a file that was made follows the rules too";
}

TEST_F(KRYKeyFile, IsSoughtInTheHomeFolderNext)
{
    setenv("XDG_STATE_HOME", "relative", 1);
    setenv("HOME", m_folder.path().c_str(), 1);
    EXPECT_EQ(32u, digestUnderFoundKey().size());
    EXPECT_TRUE(std::filesystem::exists(m_folder / ".local/state/arxium/master.key"));
    unsetenv("HOME");
    std::string details;
    EXPECT_EQ(KRY_ERROR_KEY, startService("Arxium", &details));
    EXPECT_EQ("no place for the key file: none of cryptoKeyFile, XDG_STATE_HOME and HOME is set", details);
}
