#include "NEBCFGAPI/NEBConfigurationStore.h"

#include <fstream>

#include <gtest/gtest.h>

#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "NEBCore/NEBException.h"
#include "support/TemporaryFolder.h"

namespace
{
// The message of the refusal; empty if the file is taken.
std::string load(std::string const& path, char const* contents = nullptr)
{
    if (contents)
        std::ofstream(path) << contents;
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

std::string valueOf(char const* key)
{
    return NEBConfigurationFactory::getInstance().getConfigurationValue(key, nullptr).c_str();
}

TEST(NEBConfigurationStoreLoad, TrimsKeepsEarlierSettingsAndTakesNothingOfARefusedFile)
{
    TemporaryFolder const folder;
    std::string const path = folder / "settings";
    NEBConfigurationStore::getStore().setValue("kept", "1");
    NEBConfigurationStore::getStore().setValue("changed", "1");
    EXPECT_EQ("", load(path, "# note\r\n\n  changed \t=  a = b \r\nempty=\n\xC3\xA4=\xE2\x82\xAC"));
    EXPECT_EQ(path + ":3: no \"key=value\"", load(path, "kept=2\n\nnonsense\n"));
    EXPECT_EQ(path + ":2: no \"key=value\"", load(path, "kept=2\n = 2\n"));
    EXPECT_EQ(path + ":3: \"kept\" is set twice", load(path, "kept=2\n#\nkept = 3\n"));
    EXPECT_EQ(folder / "missing: can't be opened", load(folder / "missing"));
    EXPECT_EQ(folder.path() + ": can't be read", load(folder.path()));
    EXPECT_EQ("1", valueOf("kept"));
    EXPECT_EQ("a = b", valueOf("changed"));
    EXPECT_EQ("", valueOf("empty"));
    EXPECT_EQ("\xE2\x82\xAC", valueOf("\xC3\xA4"));
    NEBConfigurationStore::getStore().clear();
    EXPECT_EQ("", valueOf("kept"));
}
}  // namespace
