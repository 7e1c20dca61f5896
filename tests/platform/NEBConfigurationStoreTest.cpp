#include "NEBCFGAPI/NEBConfigurationStore.h"

#include <fstream>

#include <gtest/gtest.h>

#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "NEBCore/NEBException.h"
#include "support/TemporaryFolder.h"

namespace
{
class NEBConfigurationStoreLoad : public testing::Test
{
protected:
    NEBConfigurationStoreLoad() { NEBConfigurationStore::getStore().clear(); }

    std::string load(char const* contents)
    {
        std::ofstream(m_path) << contents;
        return messageOf(m_path);
    }
    static std::string messageOf(std::string const& path)
    {
        try
        {
            NEBConfigurationStore::getStore().load(path);
            return "";
        }
        catch (NEBException const& error)
        {
            return error.getMessage();
        }
    }
    static std::string valueOf(char const* key)
    {
        return NEBConfigurationFactory::getInstance().getConfigurationValue(key, nullptr).c_str();
    }

    TemporaryFolder m_folder;
    std::string m_path = m_folder / "settings";
};

TEST_F(NEBConfigurationStoreLoad, TrimsAndKeepsEarlierSettings)
{
    NEBConfigurationStore::getStore().setValue("kept", "1");
    NEBConfigurationStore::getStore().setValue("changed", "1");
    EXPECT_EQ("", load("# note\r\n\n  changed \t=  a = b \r\nempty=\n\xC3\xA4=\xE2\x82\xAC"));
    EXPECT_EQ("1", valueOf("kept"));
    EXPECT_EQ("a = b", valueOf("changed"));
    EXPECT_EQ("", valueOf("empty"));
    EXPECT_EQ("\xE2\x82\xAC", valueOf("\xC3\xA4"));
    EXPECT_EQ("", valueOf("unknown"));
}

TEST_F(NEBConfigurationStoreLoad, NamesTheLineAndTakesNothingOfARefusedFile)
{
    EXPECT_EQ(m_path + ":3: no \"key=value\"", load("a=1\n\nnonsense\n"));
    EXPECT_EQ(m_path + ":2: no \"key=value\"", load("a=1\n = 2\n"));
    EXPECT_EQ(m_path + ":3: \"a\" is set twice", load("a=1\n#\na = 2\n"));
    EXPECT_EQ(m_folder / "missing: can't be opened", messageOf(m_folder / "missing"));
    EXPECT_EQ(m_folder.path() + ": can't be read", messageOf(m_folder.path()));
    EXPECT_EQ("", valueOf("a"));
}
}  // namespace
