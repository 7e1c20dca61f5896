// Libraries that a host closes while it keeps NEBCore. This program links only NEBCore.

#include <dlfcn.h>

#include <gtest/gtest.h>

#include "NEBCore/NEBMessage.h"

TEST(Unload, MessagesOutliveTheLibraryThatBroughtThem)
{
    void* const library = dlopen(ARXRESOURCE_LIBRARY, RTLD_NOW);
    ASSERT_NE(nullptr, library);
    auto const getString =
        reinterpret_cast<I18NString const& (*)(int)>(dlsym(library, "_ZN10ARXI18NRes9getStringEi"));
    ASSERT_NE(nullptr, getString);
    NEBMessage message(getString(0), 2);
    ASSERT_EQ(0, dlclose(library));
    ASSERT_EQ(nullptr, dlopen(ARXRESOURCE_LIBRARY, RTLD_NOW | RTLD_NOLOAD));
    I18NString text;
    message.format("a.zip", nullptr, text);
    EXPECT_STREQ("The archive a.zip can't be read.", text.c_str());
}
