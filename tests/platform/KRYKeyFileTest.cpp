#include <filesystem>
#include <tuple>

#include <sys/wait.h>
#include <unistd.h>

#include "platform/KRYStarted.h"
#include "support/TemporaryFolder.h"

namespace
{
namespace fs = std::filesystem;

struct KRYKeyFile : testing::Test
{
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

// A digest under the key that a start finds.
std::string digestUnderFoundKey()
{
    std::string digest;
    start(s_service);
    KRYTestSession session;
    EXPECT_EQ(KRY_SUCCESS, session.sign());
    session.protect("data", &digest);
    stop(s_service);
    return digest;
}
}  // namespace

TEST_F(KRYKeyFile, MustKeepItsRules)
{
    std::string const open = " is open to group or others", size = " does not hold exactly 32 bytes";
    std::tuple<char const*, std::size_t, mode_t, std::string> const rows[] = {{"group", 32, 0640, open},
                                                                              {"others", 32, 0602, open},
                                                                              {"short", 31, 0600, size},
                                                                              {"long", 33, 0600, size},
                                                                              {"good", 32, 0400, ""}};
    for (auto const& [name, bytes, mode, reason] : rows)
    {
        std::string const path = m_folder / name;
        writeFile(path, std::string(bytes, 'k'), mode);
        EXPECT_EQ(reason.empty() ? "" : "key file " + path + reason, reasonFor(path));
    }
    std::string const missing = m_folder / "missing", pipe = m_folder / "pipe", good = m_folder / "good";
    EXPECT_EQ("key file " + missing + " can't be opened: No such file or directory", reasonFor(missing));
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    for (std::string const& path : {pipe, m_folder.path()})
        EXPECT_EQ("key file " + path + " is no regular file", reasonFor(path));
    if (geteuid() != 0)
        return;  // only root can give files away
    ASSERT_EQ(0, chown(good.c_str(), 1, 1));
    EXPECT_EQ("key file " + good + " belongs to another user", reasonFor(good));
}

TEST_F(KRYKeyFile, IsMadeOnceByProcessesThatStartTogether)
{
    setenv("XDG_STATE_HOME", (m_folder / "a/b").c_str(), 1);
    int const processes = 8;
    for (int i = 0; i < processes; ++i)
        if (fork() == 0)
        {
            writeFile(m_folder / std::to_string(i), digestUnderFoundKey());
            _exit(0);
        }
    std::string const digest = digestUnderFoundKey();
    EXPECT_EQ(32u, digest.size());
    for (int i = 0; i < processes; ++i)
        wait(nullptr);
    for (int i = 0; i < processes; ++i)
        EXPECT_EQ(digest, readAll(m_folder / std::to_string(i)));

    fs::path const folder = m_folder / "a/b/arxium", key = folder / "master.key";
    for (fs::path const& made : {folder, folder.parent_path()})
        EXPECT_EQ(fs::perms{0700}, fs::status(made).permissions());
    EXPECT_EQ(fs::perms{0600}, fs::status(key).permissions());
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
