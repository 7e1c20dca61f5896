#include "host/SignedUrl.h"

#include <cstdlib>
#include <iostream>
#include <set>

#include <gtest/gtest.h>

#include "NEBCore/NEBWeb64.h"
#include "host/RunningLibrary.h"
#include "support/TemporaryFolder.h"
#include "url/ARXUriDispatchHelper.h"

namespace
{
char constexpr s_alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
std::size_t constexpr s_digestLength = 43;  // characters

std::string encode(std::string const& bytes)
{
    std::string text(NEBWeb64EncodedSize(bytes.size(), 0), '\0');
    NEBWeb64Encode(bytes.data(), bytes.size(), text.data(), 0);
    text.pop_back();
    return text;
}

// All that may be tried in place of a digest: each bit and each character changed, which spells the same
// bytes in other ways too, each length, and more behind it.
std::set<std::string> forgeriesOf(std::string const& digest)
{
    std::set<std::string> forgeries;
    std::string bytes;
    EXPECT_TRUE(NEBWeb64Decode(digest.data(), digest.size(), bytes));
    for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit)
    {
        std::string flipped = bytes;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        forgeries.insert(encode(flipped));
    }
    for (std::size_t length = 0; length < digest.size(); ++length)
    {
        forgeries.insert(digest.substr(0, length));
        forgeries.insert(digest + digest.substr(0, length + 1));
        for (char const c : std::string(s_alphabet, sizeof s_alphabet))
            forgeries.insert(std::string(digest).replace(length, 1, 1, c));
    }
    for (std::size_t length = 0; length < bytes.size(); ++length)
        forgeries.insert(encode(bytes.substr(0, length)));
    for (char const* const end : {"=", "A", "%3d", "+", " ", "&", "\n"})
        forgeries.insert(digest + end);
    forgeries.erase(digest);
    return forgeries;
}

TEST(SignedUrl, NoForgeryIsAccepted)
{
    TemporaryFolder const folder;
    setenv("XDG_STATE_HOME", folder.path().c_str(), 1);  // where the start makes the key
    RunningLibrary const library;
    std::string url;
    ARXUriDispatchHelper::generateByteServingUrlFromBasePath("report.pdf", "session", url);
    ASSERT_EQ(std::vector<std::string>(), findWrongValues(url, "session"));

    std::size_t const k = url.find("&k=") + 3, s = url.find("&s=") + 3;
    std::set<std::string> forged;
    for (std::size_t const place : {k, s})
        for (std::string const& forgery : forgeriesOf(url.substr(place, s_digestLength)))
            forged.insert(std::string(url).replace(place, s_digestLength, forgery));
    std::string exchanged = url;
    exchanged.replace(k, s_digestLength, url, s, s_digestLength);
    exchanged.replace(s, s_digestLength, url, k, s_digestLength);
    forged.insert(exchanged);
    std::string const name = "f=" + encode("report.pdf");
    for (char const* const other :
         {"report.pdg", "report.pd", "report.pdfs", "./report.pdf", "", "report.pdfsession"})
        forged.insert(std::string(url).replace(url.find(name), name.size(), "f=" + encode(other)));

    for (std::string const& each : forged)
        EXPECT_NE(0u, findWrongValues(each, "session").size()) << each;
    for (char const* const session : {"", "sessio", "sessions", "Session"})
        EXPECT_EQ(1u, findWrongValues(url, session).size()) << session;
    std::cout << forged.size() << " forged URLs\n";
    EXPECT_LT(5000u, forged.size());
}
}  // namespace
