#include "host/SignedUrl.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "NEBCore/NEBFmDir.h"
#include "NEBCore/NEBWeb64.h"
#include "host/Failure.h"
#include "url/ARXUriDispatchHelper.h"

namespace
{
char const* const s_introductions[] = {"?b_action=dc&f=", "&k=", "&s=", "&did="};

// The values behind the four introductions. Empty if they do not all stand in the URL, in their order.
std::vector<std::string> splitValues(std::string const& url)
{
    std::vector<std::string> values;
    std::size_t begin = url.find(s_introductions[0]);
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
    if (!NEBFmDir::exists(file.c_str(), NEBFmDir::s_regularFile))
        failed(NEB_HERE, file + ": no such file");

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
        return {"the URL lacks one of \"?b_action=dc&f=\", \"&k=\", \"&s=\" and \"&did=\""};

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
