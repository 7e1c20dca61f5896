#include "SignedUrl.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "Failure.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "NEBCore/NEBWeb64.h"
#include "url/ARXUriDispatchHelper.h"

namespace
{
char const* const s_introductions[] = {"?b_action=dc&f=", "&k=", "&s=", "&did="};

// Where the query begins: after a configured base path, which may hold anything, or else at the first "?" or
// "#".
std::size_t findQuery(std::string const& url)
{
    std::string const query = s_introductions[0];
    for (char const* const setting : {"gatewayUrl", "externalDispatcherUrl"})
    {
        std::string const base =
            NEBConfigurationStore::getStore().getConfigurationValue(setting, nullptr).c_str();
        if (url.compare(0, base.size() + query.size(), base + query) == 0)
            return base.size();
    }
    std::size_t const first = url.find_first_of("?#");
    return first != std::string::npos && url.compare(first, query.size(), query) == 0 ? first
                                                                                      : std::string::npos;
}

// The values after the four introductions. Empty unless the URL has all four, in this order.
std::vector<std::string> splitValues(std::string const& url)
{
    std::vector<std::string> values;
    std::size_t begin = findQuery(url);
    for (std::size_t i = 0; i < std::size(s_introductions); ++i)
    {
        if (begin == std::string::npos)
            return {};
        begin += std::strlen(s_introductions[i]);
        bool const isLast = i + 1 == std::size(s_introductions);
        std::size_t const end = isLast ? url.size() : url.find(s_introductions[i + 1], begin);
        values.push_back(url.substr(begin, end - begin));
        begin = end;
    }
    return values;
}

// In a time that doesn't tell how many of the first characters are right.
bool isEqual(std::string const& given, std::string const& expected)
{
    unsigned difference = given.size() == expected.size() ? 0 : 1;
    for (std::size_t i = 0; i < std::min(given.size(), expected.size()); ++i)
        difference |= static_cast<unsigned>(given[i] ^ expected[i]);
    return difference == 0;
}
}  // namespace

std::string signFile(std::string const& file, std::string const& session, bool dispatcher)
{
    std::error_code error;
    bool const isRegular = std::filesystem::is_regular_file(file, error);
    if (!isRegular)
        failed(NEB_HERE, file, error ? error.message() : "is no regular file");

    std::string url;
    if (dispatcher)
        ARXUriDispatchHelper::genExternalDispatcherUrlForFile(file, url, session.c_str(), true);
    else
        ARXUriDispatchHelper::genGatewayUrlForFile(file, url, session.c_str(), true);
    return url;
}

std::vector<std::string> findWrongValues(std::string const& url, std::string const& session)
{
    std::vector<std::string> const given = splitValues(url);
    if (given.empty())
        return {"the URL is not a base path and \"?b_action=dc&f=...&k=...&s=...&did=...\""};

    std::string name;
    if (!NEBWeb64Decode(given[0].c_str(), given[0].size(), name) || name.empty())
        return {"f is no Web64 text of a file name"};
    if (name.find_first_of("/\\") != std::string::npos)
        return {"f names a path, not a file"};

    std::string rebuilt;
    ARXUriDispatchHelper::generateByteServingUrlFromBasePath(name, session.c_str(), rebuilt);
    std::vector<std::string> const expected = splitValues(rebuilt);

    char const* const meanings[] = {"k is not the signature of the file name",
                                    "s is not the signature of the file name in this session",
                                    "did is not the configured dispatcher"};
    std::vector<std::string> wrong;
    for (std::size_t i = 0; i < std::size(meanings); ++i)
        if (!isEqual(given[i + 1], expected[i + 1]))  // f, decoded strictly, has no second spelling
            wrong.emplace_back(meanings[i]);
    return wrong;
}
