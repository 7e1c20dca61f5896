#include "NEBCFGAPI/NEBConfigurationStore.h"

#include <fstream>

#include <gtest/gtest.h>

#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"

namespace
{
std::string valueOf(char const* key)
{
    return NEBConfigurationFactory::getInstance().getConfigurationValue(key, nullptr).c_str();
}

TEST(NEBConfigurationStoreLoad, TrimsKeepsEarlierSettingsAndTakesNothingOfARefusedFile)
{
    TemporaryFolder const folder;
    std::string const path = folder / "settings";
    NEBConfigurationStore& store = NEBConfigurationStore::getStore();
    store.setValue("kept", "1");
    store.setValue("changed", "1");
    std::ofstream(path) << "# note\r\n\n  changed \t=  a = b \r\nempty=\n\xC3\xA4=\xE2\x82\xAC";
    store.load(path);
    auto const refusal = [&store](std::string const& name, char const* contents = nullptr)
    {
        if (contents)
            std::ofstream(name) << contents;
        return raisedBy([&] { store.load(name); }).at(0);
    };
    EXPECT_EQ("NEBException: " + path + ":3: no \"key=value\"", refusal(path, "kept=2\n\nnonsense\n"));
    EXPECT_EQ("NEBException: " + path + ":2: no \"key=value\"", refusal(path, "kept=2\n = 2\n"));
    EXPECT_EQ("NEBException: " + path + ":3: \"kept\" is set twice", refusal(path, "kept=2\n#\nkept = 3\n"));
    EXPECT_EQ("NEBException: " + folder / "missing" + ": No such file or directory",
              refusal(folder / "missing"));
    EXPECT_EQ("NEBException: " + folder.path() + ": Is a directory", refusal(folder.path()));
    EXPECT_EQ("1|a = b||\xE2\x82\xAC", valueOf("kept") + '|' + valueOf("changed") + '|' + valueOf("empty") +
                                           '|' + valueOf("\xC3\xA4"));
    store.clear();
    EXPECT_EQ("", valueOf("kept"));
}
}  // namespace
