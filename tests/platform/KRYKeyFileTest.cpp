#include <sys/wait.h>
#include <unistd.h>

#include "platform/KRYStarted.h"

namespace
{
struct KRYKeyFile : testing::Test
{
    ~KRYKeyFile() override { NEBConfigurationStore::getStore().clear(); }

    // What a start says about a configured key file; empty if it is accepted.
    std::string reasonFor(std::string const& path)
    {
        NEBConfigurationStore::getStore().setValue("cryptoKeyFile", path.c_str());
        std::string const reason = start();
        EXPECT_EQ(reason.empty() ? KRY_SUCCESS : KRY_ERROR_STATE, stop());
        return reason;
    }

    TemporaryFolder m_folder;
};

struct KeyFileCase
{
    char const* m_name;
    std::size_t m_size;
    mode_t m_mode;
    char const* m_reason;  // empty: accepted
};
char const s_size[] = " does not hold 1 to 64 keys of 32 bytes";
char const s_open[] = " is open to group or others";
KeyFileCase const s_keyFiles[] = {
    {"OneKey", 32, 0400, ""},
    {"MostKeys", 64 * 32, 0600, ""},
    {"NoKey", 0, 0600, s_size},
    {"CutKey", 63, 0600, s_size},
    {"OneKeyTooMany", 65 * 32, 0600, s_size},
    {"OpenToGroup", 32, 0640, s_open},
    {"OpenToOthers", 32, 0602, s_open},
};

// A signature under the key that a start finds.
std::string signatureUnderFoundKey()
{
    std::string signature;
    start();
    KRYTestSession session;
    session.sign();
    session.protect("data", &signature);
    stop();
    return signature;
}
}  // namespace

TEST_F(KRYKeyFile, KeepsItsRules)
{
    for (KeyFileCase const& row : s_keyFiles)
    {
        std::string const path = m_folder / row.m_name, reason = row.m_reason;
        writeFile(path, std::string(row.m_size, 'k'), row.m_mode);
        EXPECT_EQ(reason.empty() ? "" : "key file " + path + reason, reasonFor(path));
    }
}

TEST_F(KRYKeyFile, IsARegularFileOfItsUser)
{
    std::string const path = m_folder / "key";
    EXPECT_EQ("key file " + path + " can't be opened: No such file or directory", reasonFor(path));
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_EQ("key file " + path + " is not a regular file", reasonFor(path));
    writeFile(path, std::string(32, 'k'));
    if (chown(path.c_str(), 1, 1) != 0)
        GTEST_SKIP() << "only root can give files away";
    EXPECT_EQ("key file " + path + " belongs to another user", reasonFor(path));
}

TEST_F(KRYKeyFile, IsMadeOnceByProcessesThatStartTogether)
{
    setenv("XDG_STATE_HOME", (m_folder / "a/b").c_str(), 1);
    int const processes = 8;
    for (int i = 0; i < processes; ++i)
        if (fork() == 0)
        {
            writeFile(m_folder / std::to_string(i), signatureUnderFoundKey());
            _exit(0);
        }
    std::string const signature = signatureUnderFoundKey();
    EXPECT_EQ(32u, signature.size());
    for (int i = 0; i < processes; ++i)
        wait(nullptr);
    for (int i = 0; i < processes; ++i)
        EXPECT_EQ(signature, readAll(m_folder / std::to_string(i)));
    EXPECT_EQ(std::filesystem::perms{0700}, std::filesystem::status(m_folder / "a/b/arxium").permissions());
}

TEST_F(KRYKeyFile, IsSoughtInTheHomeFolderNext)
{
    setenv("XDG_STATE_HOME", "relative", 1);
    setenv("HOME", m_folder.path().c_str(), 1);
    EXPECT_EQ(32u, signatureUnderFoundKey().size());
    EXPECT_TRUE(std::filesystem::exists(m_folder / ".local/state/arxium/master.key"));
    unsetenv("HOME");
    EXPECT_EQ("no place for the key file: none of cryptoKeyFile, XDG_STATE_HOME and HOME is set",
              reasonFor(""));
}
